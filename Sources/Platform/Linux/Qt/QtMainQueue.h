// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/MainQueue.h"

#include <QObject>

namespace platform::desktop {

/// The main queue on Qt's event loop. Made and destroyed on the main thread.
class QtMainQueue final : public MainQueue {
  public:
    void post(std::function<void()> work) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    [[nodiscard]] RegistrationHandle repeat(std::chrono::milliseconds interval, std::function<void()> work) override;
    [[nodiscard]] Instant now() const override;

  private:
    QObject m_receiver;
};

} // namespace platform::desktop
