// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Pasteboard.h"

namespace quillory::test {

/// A clipboard that the program shares with the user and other applications. Reading it takes a moment.
class SimulatedPasteboard final : public platform::Pasteboard {
  public:
    explicit SimulatedPasteboard(platform::MainQueue &queue) : m_queue(queue) {}

    platform::PasteboardItems items;
    /// The program that owns the content does not answer.
    bool hangs = false;
    /// What an application sees that pastes now.
    [[nodiscard]] QString string() const;
    /// The same, by an application that then holds it.
    [[nodiscard]] QString fetch() {
        ++m_fetchCount;
        return string();
    }
    /// The user copies something in another application.
    void copy(platform::PasteboardItems content);
    void copy(const QString &text) { copy({textItem(text)}); }
    [[nodiscard]] static platform::PasteboardItem textItem(const QString &text) {
        return {{{QStringLiteral("text/plain"), text.toUtf8()}}};
    }

    void copyItems(std::function<void(std::optional<platform::PasteboardItems>)> done) override;
    void copyString(std::function<void(std::optional<QString>)> done) override {
        copyItems(
            [this, done = std::move(done)](const auto &read) { done(read ? std::optional(string()) : std::nullopt); });
    }
    void clearContents() override { copy(platform::PasteboardItems()); }
    void setString(const QString &text) override { copy(text); }
    void writeObjects(const platform::PasteboardItems &content) override { copy(content); }
    [[nodiscard]] qint64 changeCount() override { return m_changeCount; }
    [[nodiscard]] qint64 fetchCount() override { return m_fetchCount; }

  private:
    platform::MainQueue &m_queue;
    qint64 m_changeCount = 0;
    qint64 m_fetchCount = 0;
};

} // namespace quillory::test
