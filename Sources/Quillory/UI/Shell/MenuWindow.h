// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

class QMenu;

namespace quillory::ui {

/// A menu's items in a small window, for desktops without a tray. It stays open until it is closed, so that what a
/// toggle did can be seen, and follows what changes meanwhile. Keys do what they do in a menu.
class MenuWindow final : public QWidget {
  public:
    explicit MenuWindow(QMenu &menu);
    /// Shows the items as they are now, in front of other windows.
    void open();

  protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

  private:
    void addRows();

    QMenu &m_menu;
    QTimer m_looks;
};

} // namespace quillory::ui
