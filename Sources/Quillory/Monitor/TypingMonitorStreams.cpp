// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Monitor/AnswerScreening.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/RewriteError.h"

#include <algorithm>

namespace quillory {

namespace {

// Each card update lays out the whole stack.
constexpr double cardUpdateSeconds = 0.08;

QString logLine(const QString &source, SuggestionKind kind, bool showPanel, const QStringList &labels) {
    const QString rewrite = showPanel ? QStringLiteral("rewrite requested") : QStringLiteral("prefetch started");
    return (kind == SuggestionKind::reply ? QStringLiteral("reply") : rewrite) + QStringLiteral(" (") +
           QString::number(text::characterCount(source)) + QStringLiteral(" chars, ") +
           labels.join(QStringLiteral(" vs ")) + u')';
}

// Runs a request to its end on the calling thread. Absent if it failed, which is logged. Throws CancellationError.
std::optional<QString> answer(const std::function<QString()> &request, const QString &label) {
    QString description;
    try {
        return request();
    } catch (const platform::CancellationError &) {
        throw;
    } catch (const RewriteError &error) {
        description = error.description();
    } catch (const std::exception &error) {
        description = QString::fromUtf8(error.what());
    }
    FileLog::log(label + QStringLiteral(" failed: ") + description);
    return std::nullopt;
}

} // namespace

void TypingMonitor::startStreams(const QString &source, const Element &element, bool showPanel, SuggestionKind kind) {
    m_lastRequestedSource = source;
    m_streamSource = source;
    m_streamKind = kind;
    m_streams.clear();
    QStringList labels;
    for (const auto &[id, label] : activeModels(m_settings.store())) {
        m_streams.push_back(std::make_shared<ModelStream>(id, label, m_mainQueue.now()));
        labels.append(label);
    }
    // A reply's source is the conversation itself.
    std::optional<QString> context;
    if (kind == SuggestionKind::rewrite && m_focusIsChatApp) {
        if (auto conversation = ChatContext::extract(element)) {
            context = std::move(conversation->text);
        }
    }
    FileLog::log(logLine(source, kind, showPanel, labels));
    if (showPanel) {
        presentStreams(element);
    }
    int index = 0;
    for (const auto &stream : m_streams) {
        launch(stream, index++, source, context, kind);
    }
}

void TypingMonitor::launch(const StreamPointer &stream, int index, const QString &source,
                           const std::optional<QString> &context, SuggestionKind kind) {
    // Hands results to the main thread; by then the monitor may be gone.
    const auto deliver = [this](auto handle) { m_mainQueue.post(m_life.whileAlive(std::move(handle))); };
    const auto deliverFailure = [=, this] { deliver([=, this] { handleFailure(stream, index, source); }); };
    const auto onChunk = [=, this](const QString &text) {
        deliver([=, this] { handleChunk(stream, index, source, text); });
    };
    stream->task = m_tasks.start([=, this](const std::stop_token &stop) {
        try {
            const auto request = [&] { return m_client.stream(kind, source, context, stream->model, onChunk, stop); };
            const auto raw = answer(request, stream->label);
            if (!raw) {
                deliverFailure();
            } else if (!stop.stop_requested()) {
                deliver([=, this] { handleCompletion(stream, index, source, kind, *raw); });
            }
        } catch (const platform::CancellationError &) {
            return; // the answer is no longer wanted
        }
    });
    if (!stream->task) {
        FileLog::log(stream->label + QStringLiteral(" failed: no thread for the request"));
        deliverFailure();
    }
}

// The same text may be requested again, so the stream must be one of the present ones as well.
bool TypingMonitor::isLive(const StreamPointer &stream, const QString &source) const {
    return m_streamSource && text::equal(*m_streamSource, source) &&
           std::find(m_streams.begin(), m_streams.end(), stream) != m_streams.end();
}

void TypingMonitor::handleChunk(const StreamPointer &stream, int index, const QString &source, const QString &text) {
    if (!isLive(stream, source)) {
        return;
    }
    stream->buffer = text;
    const platform::Instant now = m_mainQueue.now();
    if (m_panel.isVisible() && now - stream->cardUpdatedAt > cardUpdateSeconds) {
        stream->cardUpdatedAt = now;
        m_panel.updateCard(index, stream->buffer);
    }
}

void TypingMonitor::handleFailure(const StreamPointer &stream, int index, const QString &source) {
    if (isLive(stream, source)) {
        fail(stream, index, QStringLiteral("Couldn't reach ") + stream->label);
    }
}

void TypingMonitor::handleCompletion(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                                     const QString &rawFinal) {
    if (!isLive(stream, source)) {
        return;
    }
    const QString answer = cleanedAnswer(rawFinal);
    const Verdict verdict = screen(kind, source, answer);
    switch (verdict.outcome) {
    case Verdict::Outcome::rejected:
        FileLog::log(stream->label + QStringLiteral(" rejected: ") + verdict.reason);
        fail(stream, index, QStringLiteral("Rejected: ") + stream->label + QStringLiteral(" went off script"));
        break;
    case Verdict::Outcome::skipped:
        FileLog::log(stream->label + QStringLiteral(": no reply needed (SKIP)"));
        fail(stream, index, stream->label + QStringLiteral(": no reply needed"));
        break;
    case Verdict::Outcome::accepted:
        complete(stream, index, source, kind, answer);
        break;
    }
}

// A panel that showed nothing but failures would be in the way.
void TypingMonitor::fail(const StreamPointer &stream, int index, const QString &message) {
    stream->failed = true;
    stream->task.reset();
    if (std::all_of(m_streams.begin(), m_streams.end(), [](const auto &other) { return other->failed; })) {
        m_panel.hide();
        m_streamSource.reset();
    } else if (m_panel.isVisible()) {
        m_panel.failCard(index, message);
    }
}

void TypingMonitor::complete(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                             const QString &answer) {
    stream->final = answer;
    stream->completedAt = m_mainQueue.now();
    stream->task.reset();
    FileLog::log(stream->label + QStringLiteral(" complete (") + QString::number(text::characterCount(answer)) +
                 QStringLiteral(" chars, ") + text::fixed(*stream->elapsed(), 2) + QStringLiteral("s)"));
    if (kind == SuggestionKind::rewrite && m_streams.size() == 1 && isUnchanged(source, answer)) {
        FileLog::log(QStringLiteral("suggestion identical to draft, skipping"));
        m_panel.hide();
        m_streamSource.reset();
        return;
    }
    showAnswer(*stream, index);
    acceptForDebugging();
}

void TypingMonitor::showAnswer(const ModelStream &stream, int index) {
    if (m_panel.isVisible()) {
        m_panel.finishCard(index, *stream.final, text::fixed(*stream.elapsed(), 1) + u's');
    } else if (m_currentElement) {
        presentStreams(*m_currentElement);
    }
}

void TypingMonitor::presentStreams(const Element &element) {
    if (!m_streamSource || m_streams.empty()) {
        return;
    }
    const auto &only = m_streams.front()->final;
    if (m_streamKind == SuggestionKind::rewrite && m_streams.size() == 1 && only &&
        isUnchanged(*m_streamSource, *only)) {
        FileLog::log(QStringLiteral("suggestion identical to draft, not showing"));
        m_streamSource.reset();
        m_streams.clear();
        return;
    }
    if (const auto frame = anchor(element)) {
        m_panel.show(cards(), *frame, element);
    } else {
        FileLog::log(QStringLiteral("no AX frame for element, cannot show panel"));
    }
}

std::optional<platform::Rect> TypingMonitor::anchor(const Element &element) const {
    const auto frame = AXText::frame(element);
    if (frame || m_currentElementFrame.isZero()) {
        return frame;
    }
    return m_currentElementFrame;
}

SuggestionCards TypingMonitor::cards() const {
    SuggestionCards result;
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        result.append(card(*m_streams[i], m_streamKind, i, m_streams.size()));
    }
    return result;
}

void TypingMonitor::cancelStreams() {
    for (const auto &stream : m_streams) {
        if (stream->task) {
            stream->task->cancel();
        }
    }
    m_streams.clear();
    m_streamSource.reset();
}

} // namespace quillory
