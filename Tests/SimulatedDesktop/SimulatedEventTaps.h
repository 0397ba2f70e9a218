// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Keys.h"

#include <utility>

namespace quillory::test {

/// A keyboard whose Tab and Esc can be tapped. Holds one tap at a time; must outlive it.
class SimulatedEventTaps final : public platform::EventTaps {
  public:
    /// Another program holds the keys: no tap can be made, or none can be armed.
    bool refusesCreation = false;
    bool refusesArming = false;

    /// The user presses a key: what the armed tap says, or pass when there is none.
    platform::TapVerdict press(platform::KeyCode key, platform::EventFlags flags = 0) {
        return m_armed ? m_callback({platform::TapEventType::keyDown, key, flags}) : platform::TapVerdict::pass;
    }
    /// The system takes the tap out of service and says so.
    void disarm(platform::TapEventType notice) {
        m_armed = false;
        m_callback({notice, 0, 0});
    }
    [[nodiscard]] bool isArmed() const { return m_armed; }
    /// The number of taps made and of times one was asked for.
    int made = 0;
    int requests = 0;

    [[nodiscard]] std::unique_ptr<platform::EventTap> create(platform::TapCallback callback) override {
        ++requests;
        if (refusesCreation) {
            return nullptr;
        }
        ++made;
        m_callback = std::move(callback);
        return std::make_unique<Tap>(*this);
    }

  private:
    class Tap final : public platform::EventTap {
      public:
        explicit Tap(SimulatedEventTaps &keyboard) : m_keyboard(keyboard) {}
        ~Tap() override { m_keyboard.m_armed = false; }
        Tap(const Tap &) = delete;
        Tap &operator=(const Tap &) = delete;
        bool setEnabled(bool enabled) override {
            m_keyboard.m_armed = enabled && !m_keyboard.refusesArming;
            return m_keyboard.m_armed == enabled;
        }

      private:
        SimulatedEventTaps &m_keyboard;
    };

    platform::TapCallback m_callback;
    bool m_armed = false;
};

} // namespace quillory::test
