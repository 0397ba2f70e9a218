// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Form/Form.h"

#include <vector>

class QPushButton;

namespace quillory::ui {

class FAQRow;

/// The section that edits the FAQ entries. It reads the stored list once; every change stores the whole list.
class FAQSection final : public FormSection {
  public:
    explicit FAQSection(AppSettings &settings);

    /// Called with the row that was added or took the focus of a removed one, which ought to be scrolled into view.
    std::function<void(QWidget *)> onReveal;

  private:
    void show(qsizetype index);
    void add();
    void remove(const QUuid &id);
    void giveFocusTo(qsizetype index);
    void store();

    AppSettings &m_settings;
    QList<FAQEntry> m_entries;
    /// One for each entry, in the same order.
    QList<FAQRow *> m_rows;
    QPushButton *m_add;
    /// What is stored, where it cannot be read as a list.
    std::optional<QByteArray> m_unreadable;
};

} // namespace quillory::ui
