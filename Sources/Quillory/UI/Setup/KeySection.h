// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Model/ConnectionCheck.h"
#include "Quillory/Model/ModelAccess.h"
#include "Quillory/UI/Form/Form.h"

class QLineEdit;
class QPushButton;

namespace quillory::ui {

/// Takes the API key in a field that does not show it, and tries the one that is stored. Once saved it is gone from
/// here and never shown again.
class KeySection final : public FormSection {
  public:
    /// save: called with what the user entered.
    /// The access and the queue outlive this.
    KeySection(const ModelAccess &access, platform::MainQueue &mainQueue, std::function<void(const QString &)> save);
    /// Says what came of saving. A key that was saved leaves the field.
    void showOutcome(const QString &sentence, bool isSaved);
    void setKeyKnown(bool hasKey);
    /// While busy nothing can be saved; what is entered then waits for saveWaiting().
    void setBusy(bool isBusy);
    /// Saves what was entered while this was busy, if anything.
    void saveWaiting();
    void focusField();

  private:
    void showResult(const QString &text, Tint tint);
    void submit();
    void takeBack();
    void showTest();
    void showButtons();

    std::function<void(const QString &)> m_save;
    QLineEdit *m_field;
    QPushButton *m_saveButton;
    QPushButton *m_testButton;
    FormText *m_result;
    bool m_isBusy = false;
    bool m_hasKey = false;
    /// Whether the user entered what is in the field while this was busy, and has not changed it since.
    bool m_isWaiting = false;
    ConnectionCheck m_test;
};

} // namespace quillory::ui
