// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/StatusBar.h"

#include <QStringList>

namespace quillory::test {

/// A tray that comes and goes as the test says.
class SimulatedStatusBar final : public platform::StatusBar {
  public:
    [[nodiscard]] bool isAvailable() const override { return m_isAvailable; }
    [[nodiscard]] platform::RegistrationHandle onChange(std::function<void()> changed) override {
        m_changed = std::move(changed);
        return std::make_unique<platform::Registration>();
    }
    void tell(const QString & /*title*/, const QString &text) override { told += text; }

    /// What the user was told without an icon.
    QStringList told;
    void setAvailable(bool isAvailable) {
        m_isAvailable = isAvailable;
        if (m_changed) {
            m_changed();
        }
    }

  private:
    bool m_isAvailable = false;
    std::function<void()> m_changed;
};

} // namespace quillory::test
