// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Model/ConnectionCheck.h"

#include <QWidget>

class QPushButton;

namespace quillory::ui {

class ClampedText;
class FormText;
class SettingsBinding;
class SymbolView;

/// Whether the program may read other applications, and whether the model service answers.
class StatusSection final : public QWidget {
  public:
    explicit StatusSection(SettingsBinding &binding);

  protected:
    void showEvent(QShowEvent *event) override;

  private:
    [[nodiscard]] QWidget *trustRow();
    [[nodiscard]] QWidget *testRow();
    void showTrust();
    void showTest();

    SymbolView *m_trustSymbol;
    FormText *m_trust;
    FormText *m_trustAdvice;
    QPushButton *m_testButton;
    ClampedText *m_testResult;
    ConnectionCheck m_test;
};

} // namespace quillory::ui
