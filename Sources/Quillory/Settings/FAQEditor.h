// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/AppSettings.h"

#include <functional>

namespace quillory {

/// The FAQ list while it is edited. Every change stores the whole list at once. What other processes stored meanwhile
/// is taken over first, so that neither side undoes the other. Main thread only.
class FAQEditor {
  public:
    /// Reads the stored list.
    explicit FAQEditor(AppSettings &settings);

    /// Called when entries came, went or changed by another process.
    std::function<void()> onForeignChange;

    [[nodiscard]] const QList<FAQEntry> &entries() const { return m_entries; }
    // The entry is the one of this index, also when a foreign change moves it.
    void setQuestion(qsizetype index, const QString &question);
    void setAnswer(qsizetype index, const QString &answer);
    /// Removes every entry that has this one's identifier.
    void remove(qsizetype index);
    /// Adds an empty entry at the end.
    void add();
    /// Takes over what another process stored. The entry that the user is typing in, if any, stays as it is.
    void adoptForeignChange(std::optional<qsizetype> typedIn = std::nullopt);

  private:
    void change(qsizetype index, const std::function<void(qsizetype)> &edit);
    void store();

    AppSettings &m_settings;
    QList<FAQEntry> m_entries;
    /// The stored form as it was last read or written.
    std::optional<QByteArray> m_stored;
    bool m_isUnreadable = false;
};

} // namespace quillory
