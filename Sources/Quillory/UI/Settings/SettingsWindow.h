// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Settings/SettingsBinding.h"

#include <QWidget>

namespace quillory::ui {

/// The settings window. Closing it only hides it, with all its state.
class SettingsWindow final : public QWidget {
  public:
    /// In the middle of the screen that the pointer is on.
    explicit SettingsWindow(const SettingsServices &services);
    /// Shows the window in front of all others, with the keyboard focus.
    void makeKeyAndOrderFront();

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    platform::Workspace &m_workspace;
};

} // namespace quillory::ui
