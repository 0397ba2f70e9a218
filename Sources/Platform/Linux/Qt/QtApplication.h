// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Application.h"

#include <deque>
#include <utility>

class QMessageBox;

namespace platform::desktop {

/// Alerts and progress in Qt's own dialogs. An alert blocks the program's other windows, but runs no event loop of its
/// own: the monitor's tick and all that it started go on.
class QtApplication final : public Application {
  public:
    /// bringForward: asks the window manager to bring this program's windows to the front on the user's behalf.
    explicit QtApplication(std::function<void()> bringForward = [] {});
    ~QtApplication() override;
    QtApplication(const QtApplication &) = delete;
    QtApplication &operator=(const QtApplication &) = delete;

    void runAlert(const Alert &alert, std::function<void(int)> answered) override;
    [[nodiscard]] std::unique_ptr<ProgressWindow> showProgress(const QString &title,
                                                               std::function<void()> cancel) override;
    void terminate() override;

  private:
    void showNext();

    std::function<void()> m_bringForward;
    std::deque<std::pair<Alert, std::function<void(int)>>> m_waiting;
    std::unique_ptr<QMessageBox> m_open;
};

} // namespace platform::desktop
