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

/// The content of the settings window: two tabs, each a grouped form that scrolls when it does not fit. While it is
/// visible it follows what is stored.
class SettingsView final : public QWidget {
  public:
    explicit SettingsView(const SettingsServices &services);

  protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

  private:
    void showTab(int index);
    void addTab(const QString &symbol, const QString &label);
    [[nodiscard]] static FormText *warning();
    void refresh();

    SettingsBinding m_binding;
    QTabBar *m_tabs;
    QStackedWidget *m_pages;
    FormText *m_warning;
    platform::RegistrationHandle m_beat;
};

} // namespace quillory::ui
