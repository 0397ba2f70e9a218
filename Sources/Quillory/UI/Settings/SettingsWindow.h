// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/MainQueue.h"
#include "Quillory/UI/Settings/SettingsBinding.h"

#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace quillory::ui {

class FormText;

/// The settings window: two tabs, each a grouped form that scrolls when it does not fit. While it is visible it follows
/// what is stored. Closing it only hides it, with all its state.
class SettingsWindow final : public QWidget {
  public:
    /// In the middle of the screen that the pointer is on.
    explicit SettingsWindow(const SettingsServices &services);
    /// Shows the window in front of all others, with the keyboard focus.
    void makeKeyAndOrderFront();

  protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

  private:
    void addTab(const QString &symbol, const QString &label);
    void showTab(int index);
    void chooseTabsByKeys();
    void refresh();

    SettingsBinding m_binding;
    QTabBar *m_tabs;
    QStackedWidget *m_pages;
    FormText *m_warning;
    platform::RegistrationHandle m_beat;
};

} // namespace quillory::ui
