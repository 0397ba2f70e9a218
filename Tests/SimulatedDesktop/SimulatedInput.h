// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Keys.h"
#include "Platform/MainQueue.h"
#include "Platform/Pasteboard.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

/// A keyboard whose Tab and Esc can be tapped. Holds one tap at a time; must outlive it.
class SimulatedEventTaps final : public platform::EventTaps {
  public:
    /// Another program holds the keys: no tap can be made, or none can be armed.
    bool refusesCreation = false;
    bool refusesArming = false;

    platform::TapVerdict press(platform::KeyCode key, platform::EventFlags flags = 0) {
        return m_armed ? m_callback({platform::TapEventType::keyDown, key, flags}) : platform::TapVerdict::pass;
    }
    /// The system takes the tap out of service and says so.
    void disarm() {
        m_armed = false;
        m_callback({platform::TapEventType::tapDisabledByUserInput, 0, 0});
    }
    [[nodiscard]] bool isArmed() const { return m_armed; }

    [[nodiscard]] std::unique_ptr<platform::EventTap> create(platform::TapCallback callback) override {
        m_callback = std::move(callback);
        return refusesCreation ? nullptr : std::make_unique<Tap>(*this);
    }

  private:
    struct Tap final : platform::EventTap {
        explicit Tap(SimulatedEventTaps &theKeyboard) : keyboard(theKeyboard) {}
        ~Tap() override { keyboard.m_armed = false; }
        Tap(const Tap &) = delete;
        Tap &operator=(const Tap &) = delete;
        bool setEnabled(bool enabled) override {
            keyboard.m_armed = enabled && !keyboard.refusesArming;
            return keyboard.m_armed == enabled;
        }
        SimulatedEventTaps &keyboard;
    };

    platform::TapCallback m_callback;
    bool m_armed = false;
};

/// A clipboard that the program shares with the user and other applications. Reading it takes a moment.
class SimulatedPasteboard final : public platform::Pasteboard {
  public:
    explicit SimulatedPasteboard(platform::MainQueue &queue) : m_queue(queue) {}

    platform::PasteboardItems items;
    /// The program that owns the content does not answer.
    bool hangs = false;
    /// What an application sees that pastes now.
    [[nodiscard]] QString string() const {
        return items.empty() ? QString() : QString::fromUtf8(items.front().representations.front().second);
    }
    /// The same, by an application that then holds it.
    [[nodiscard]] QString fetch() {
        ++m_fetchCount;
        return string();
    }
    void copy(platform::PasteboardItems content) {
        items = std::move(content);
        ++m_changeCount;
    }
    void copy(const QString &text) { copy({{{{u"text/plain"_s, text.toUtf8()}}}}); }

    void copyItems(std::function<void(std::optional<platform::PasteboardItems>)> done) override {
        m_queue.postAfter(std::chrono::milliseconds(5),
                          [this, done = std::move(done)] { done(hangs ? std::nullopt : std::optional(items)); });
    }
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
