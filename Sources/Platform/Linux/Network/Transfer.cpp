// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/Transfer.h"

namespace platform::desktop {

namespace {
/// What may wait for the reader. A model's whole answer fits; only a flood is held back.
constexpr qsizetype bufferSize = 256 * 1024;
} // namespace

void Transfer::headArrived(const Head &head) {
    const std::scoped_lock lock(m_mutex);
    m_head = head;
    m_headArrived = true;
    m_changed.notify_all();
}

void Transfer::pointTo(const QUrl &url) {
    const std::scoped_lock lock(m_mutex);
    m_redirect = url;
}

std::optional<QUrl> Transfer::redirect() const {
    const std::scoped_lock lock(m_mutex);
    return m_redirect;
}

Transfer::Taken Transfer::take(QByteArrayView bytes) {
    const std::scoped_lock lock(m_mutex);
    if (m_bodySize + bytes.size() > m_request.longestBody) {
        return Taken::tooMuch;
    }
    if (!m_buffer.isEmpty() && m_buffer.size() + bytes.size() > bufferSize) {
        m_full = true;
        return Taken::noRoom;
    }
    m_bodySize += bytes.size();
    m_buffer.append(bytes);
    m_changed.notify_all();
    return Taken::yes;
}

void Transfer::finish(const std::optional<QString> &failure) {
    const std::scoped_lock lock(m_mutex);
    m_failure = failure;
    m_finished = true;
    m_changed.notify_all();
}

void Transfer::cancel() {
    const std::scoped_lock lock(m_mutex);
    m_cancelled = true;
    m_changed.notify_all();
}

Transfer::Head Transfer::awaitHead() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_headArrived || m_finished || m_cancelled; });
    if (m_cancelled || !m_headArrived) {
        throwIfFailed();
    }
    return m_head;
}

std::optional<Transfer::More> Transfer::awaitBytes() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_buffer.isEmpty() || m_finished || m_cancelled; });
    if (m_cancelled || m_buffer.isEmpty()) {
        throwIfFailed();
        return std::nullopt;
    }
    return More{.bytes = std::exchange(m_buffer, {}), .wasFull = std::exchange(m_full, false)};
}

void Transfer::throwIfFailed() const {
    if (m_cancelled) {
        throw CancellationError();
    }
    if (m_failure) {
        throw URLError(m_failure->toStdString());
    }
}

} // namespace platform::desktop
