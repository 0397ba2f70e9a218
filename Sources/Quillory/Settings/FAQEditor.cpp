// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/FAQEditor.h"

#include <algorithm>

namespace quillory {

namespace {

qsizetype indexOf(const QUuid &id, const QList<FAQEntry> &entries) {
    const auto found = std::ranges::find(entries, id, &FAQEntry::id);
    return found == entries.end() ? -1 : found - entries.begin();
}

/// Puts an entry into a list as it is, or as near as may be to where it was when the list lacks it.
void restore(const FAQEntry &entry, qsizetype formerIndex, QList<FAQEntry> &entries) {
    const qsizetype index = indexOf(entry.id, entries);
    if (index >= 0) {
        entries[index] = entry;
    } else {
        entries.insert(std::min(formerIndex, entries.size()), entry);
    }
}

} // namespace

FAQEditor::FAQEditor(AppSettings &settings)
    : m_settings(settings), m_stored(settings.store().data(settingsKey::faqEntries)) {
    const auto entries = m_stored ? faqEntriesFromJSON(*m_stored) : QList<FAQEntry>();
    m_entries = entries.value_or(QList<FAQEntry>());
    m_isUnreadable = !entries;
}

void FAQEditor::setQuestion(qsizetype index, const QString &question) {
    change(index, [&](qsizetype now) { m_entries[now].question = question; });
}

void FAQEditor::setAnswer(qsizetype index, const QString &answer) {
    change(index, [&](qsizetype now) { m_entries[now].answer = answer; });
}

void FAQEditor::remove(qsizetype index) {
    change(index, [this](qsizetype now) {
        m_entries.removeIf([id = m_entries[now].id](const FAQEntry &entry) { return entry.id == id; });
    });
}

void FAQEditor::add() {
    adoptForeignChange();
    m_entries.append(FAQEntry());
    store();
}

void FAQEditor::change(qsizetype index, const std::function<void(qsizetype)> &edit) {
    const QUuid id = m_entries.at(index).id;
    adoptForeignChange(index);
    // Identifiers that occur twice can only come from a file written by hand; there the index is as good as any.
    edit(m_entries.value(index).id == id ? index : indexOf(id, m_entries));
    store();
}

void FAQEditor::adoptForeignChange(std::optional<qsizetype> typedIn) {
    std::optional<QByteArray> stored = m_settings.store().data(settingsKey::faqEntries);
    if (stored == m_stored) {
        return;
    }
    std::optional<QList<FAQEntry>> theirs = stored ? faqEntriesFromJSON(*stored) : QList<FAQEntry>();
    m_stored = std::move(stored);
    m_isUnreadable = !theirs;
    if (!theirs) {
        return; // what cannot be read is no wish to be without the entries
    }
    if (typedIn) {
        restore(m_entries.at(*typedIn), *typedIn, *theirs);
    }
    m_entries = *std::move(theirs);
    if (onForeignChange) {
        onForeignChange();
    }
}

void FAQEditor::store() {
    if (m_isUnreadable) {
        // A newer version's, or one that was written by hand and has a slip in it: it must not be gone for good.
        m_settings.store().set(settingsKey::faqEntries + QStringLiteral(".unreadable"), *m_stored);
        m_isUnreadable = false;
    }
    m_settings.setFAQEntries(m_entries);
    m_stored = m_settings.store().data(settingsKey::faqEntries);
}

} // namespace quillory
