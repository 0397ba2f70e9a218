// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/StatusBar.h"

#include <memory>

class QIcon;
class QMenu;
class QSystemTrayIcon;

namespace quillory::ui {

/// The program's icon in the desktop's tray, with its menu. It waits for a tray for as long as there is none.
class StatusItem {
  public:
    /// Both outlive this.
    StatusItem(QMenu &menu, platform::StatusBar &statusBar);
    ~StatusItem();
    StatusItem(const StatusItem &) = delete;
    StatusItem &operator=(const StatusItem &) = delete;

  private:
    void showWhenPossible();

    QMenu &m_menu;
    platform::StatusBar &m_statusBar;
    platform::RegistrationHandle m_listening;
    /// Made with the first tray there is: only then does Qt settle on the kind of tray that it speaks to.
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

/// The program's symbol in its own colours, which stand out from a light and from a dark panel alike: a panel does not
/// tell which it is.
[[nodiscard]] QIcon programIcon();

} // namespace quillory::ui
