// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Quillory/ConnectionTest.h"

#include <QWidget>

class QPushButton;

namespace quillory::ui {

class ClampedText;
class FormText;
class SymbolView;

/// Whether the program may read other applications, and whether the model service answers.
class StatusSection final : public QWidget {
  public:
    StatusSection();

  protected:
    // Trust is looked at when there is reason to draw it anew; nothing polls it.
    void showEvent(QShowEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void changeEvent(QEvent *event) override;

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
    ConnectionTest m_test;
};

} // namespace quillory::ui
