// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/FAQSection.h"

#include "Quillory/UI/Form/TextField.h"
#include "Quillory/UI/Symbols.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace quillory::ui {

namespace {

constexpr int mostAnswerLines = 4;
constexpr int blockPadding = 2;
constexpr int fieldGap = 4;

QPushButton *flatButton(const QString &symbol, const QString &text = {}) {
    auto *const button = new QPushButton(symbolIcon(symbol), text);
    button->setFlat(true);
    button->setAutoDefault(false);
    return button;
}

} // namespace

/// The fields of one entry.
class FAQRow final : public QWidget {
  public:
    explicit FAQRow(const FAQEntry &entry)
        : question(new QLineEdit(entry.question, this)), answer(new TextField(QStringLiteral("Answer"))),
          trash(flatButton(symbolName::trash)) {
        question->setPlaceholderText(QStringLiteral("Question — e.g. How much is delivery?"));
        question->setValidator(newLineValidator(question));
        question->setCursorPosition(0);
        answer->showText(entry.answer);
        answer->growTo(mostAnswerLines);
        trash->setAccessibleName(QStringLiteral("Remove FAQ"));
        auto *const grid = new QGridLayout(this);
        grid->setContentsMargins(rowMargins() + QMargins(0, blockPadding, 0, blockPadding));
        grid->setSpacing(fieldGap);
        grid->addWidget(question, 0, 0);
        grid->addWidget(answer, 1, 0, 1, 2);
        grid->addWidget(trash, 0, 1);
    }
    void setNumber(qsizetype number) {
        question->setAccessibleName(QStringLiteral("Question %1").arg(number));
        answer->setAccessibleName(QStringLiteral("Answer %1").arg(number));
    }

    QLineEdit *question;
    TextField *answer;
    QPushButton *trash;
};

FAQSection::FAQSection(AppSettings &settings)
    : FormSection(QStringLiteral("FAQs (replies answer from these and never invent what's missing)")),
      m_settings(settings), m_add(flatButton(symbolName::plus, QStringLiteral("Add &FAQ"))) {
    const auto stored = settings.store().data(settingsKey::faqEntries);
    const auto entries = stored ? faqEntriesFromJSON(*stored) : QList<FAQEntry>();
    if (entries) {
        m_entries = *entries;
    } else {
        m_unreadable = stored;
    }
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        show(i);
    }
    QBoxLayout *const last = addRow();
    last->setContentsMargins(rowMargins() - QMargins(5, 0, 0, 0)); // the symbol stands below the fields' edge
    last->addWidget(m_add);
    last->addStretch();
    connect(m_add, &QPushButton::clicked, this, [this] { add(); });
}

void FAQSection::show(qsizetype index) {
    auto *const row = new FAQRow(m_entries.at(index));
    m_rows.append(row);
    row->setNumber(m_rows.size());
    addRow(row, static_cast<int>(index));
    connect(row->question, &QLineEdit::textEdited, this, [this, row](const QString &text) {
        m_entries[m_rows.indexOf(row)].question = text;
        store();
    });
    row->answer->onEdit = [this, row] {
        m_entries[m_rows.indexOf(row)].answer = row->answer->text();
        store();
    };
    connect(row->trash, &QPushButton::clicked, this, [this, row] { remove(m_entries.at(m_rows.indexOf(row)).id); });
}

void FAQSection::add() {
    m_entries.append(FAQEntry());
    store();
    show(m_entries.size() - 1);
    m_rows.constLast()->show();
    setTabOrder(m_rows.constLast()->trash, m_add);
    giveFocusTo(m_entries.size() - 1);
}

/// Removes every entry that has this identifier.
void FAQSection::remove(const QUuid &id) {
    const qsizetype place = std::ranges::find(m_entries, id, &FAQEntry::id) - m_entries.begin();
    for (qsizetype i = m_entries.size() - 1; i >= 0; --i) {
        if (m_entries.at(i).id == id) {
            m_entries.removeAt(i);
            FAQRow *const row = m_rows.takeAt(i);
            row->hide();
            row->deleteLater();
        }
    }
    store();
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        m_rows.at(i)->setNumber(i + 1);
    }
    giveFocusTo(std::min(place, m_rows.size() - 1));
}

void FAQSection::giveFocusTo(qsizetype index) {
    if (index < 0) {
        m_add->setFocus(Qt::TabFocusReason);
        return;
    }
    m_rows.at(index)->question->setFocus(Qt::TabFocusReason);
    onReveal(m_rows.at(index));
}

void FAQSection::store() {
    if (m_unreadable) {
        // A newer version's, or one that was written by hand and has a slip in it: it must not be gone for good.
        m_settings.store().set(settingsKey::faqEntries + QStringLiteral(".unreadable"), *m_unreadable);
        m_unreadable.reset();
    }
    m_settings.setFAQEntries(m_entries);
}

} // namespace quillory::ui
