// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Pasteboard.h"

namespace quillory::test {

/// A clipboard that the program shares with the user and other applications. Reading it takes a moment.
class SimulatedPasteboard final : public platform::Pasteboard {
  public:
    explicit SimulatedPasteboard(platform::MainQueue &queue) : m_queue(queue) {}

    std::vector<platform::PasteboardItem> items;
    /// What an application sees that pastes now.
    [[nodiscard]] QString string() const;
    /// The user copies something in another application.
    void copy(std::vector<platform::PasteboardItem> content);
    void copy(const QString &text) { copy({textItem(text)}); }
    [[nodiscard]] static platform::PasteboardItem textItem(const QString &text) {
        return {{{QStringLiteral("text/plain"), text.toUtf8()}}};
    }

    void copyItems(std::function<void(std::vector<platform::PasteboardItem>)> done) override;
    void copyString(std::function<void(std::optional<QString>)> done) override {
        copyItems([this, done = std::move(done)](const auto & /*items*/) { done(string()); });
    }
    void clearContents() override { copy(std::vector<platform::PasteboardItem>()); }
    void setString(const QString &text) override { copy(text); }
    void writeObjects(const std::vector<platform::PasteboardItem> &content) override { copy(content); }
    [[nodiscard]] qint64 changeCount() override { return m_changeCount; }

  private:
    platform::MainQueue &m_queue;
    qint64 m_changeCount = 0;
};

} // namespace quillory::test
