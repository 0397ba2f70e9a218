// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Quillory/Model/ConnectionCheck.h"
#include "Quillory/UI/Form/Form.h"

class QPushButton;

namespace quillory::ui {

class SettingsBinding;

/// Whether the program may read other applications, and whether the model service answers.
class StatusSection final : public FormSection {
  public:
    explicit StatusSection(SettingsBinding &binding);

  protected:
    void showEvent(QShowEvent *event) override;

  private:
    void showTrust();
    void showTest();

    FormText *m_trust;
    FormText *m_trustAdvice;
    QPushButton *m_testButton;
    FormText *m_testResult;
    platform::Accessibility &m_accessibility;
    ConnectionCheck m_test;
};

} // namespace quillory::ui
