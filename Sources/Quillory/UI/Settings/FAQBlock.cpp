// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/FAQBlock.h"

#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Card/HoverIconButton.h"
#include "Quillory/UI/Form/Field.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>

namespace quillory::ui {

namespace {
constexpr int mostAnswerLines = 4;
constexpr int fieldGap = 4;
/// The block's own padding of 2 and the room that every row of a form has.
constexpr int blockPadding = 2 + 6;
constexpr int trashGap = 4;

int fieldsWidth(int width) {
    return width - rowMargins().left() - rowMargins().right();
}
} // namespace

FAQBlock::FAQBlock(QWidget *parent)
    : QWidget(parent), m_question(new LineField(QStringLiteral("Question — e.g. How much is delivery?"))),
      m_trash(new HoverIconButton(symbolName::trash, QStringLiteral("Remove FAQ"), nullptr)),
      m_answer(new TextField(QStringLiteral("Answer"))) {
    for (QWidget *field :
         {static_cast<QWidget *>(m_question), static_cast<QWidget *>(m_answer), static_cast<QWidget *>(m_trash)}) {
        field->setParent(this); // in the order in which they are read out
        field->installEventFilter(this);
    }
    m_trash->setFocusPolicy(Qt::TabFocus);
    chainFields();
    leaveWheelToPage(m_answer);
    m_answer->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // it would take its width from the text
    connect(m_question, &QLineEdit::textEdited, this, [this](const QString &text) { onQuestion(m_index, text); });
    m_answer->onEdit = [this] { onAnswer(m_index, m_answer->text()); };
    connect(m_trash, &QAbstractButton::clicked, this, [this] { onRemove(m_index); });
}

void FAQBlock::showEntry(const FAQEntry &entry, qsizetype index) {
    m_index = index;
    m_entry = entry.id;
    if (m_question->text() != entry.question && !(m_question->hasFocus() && m_question->isModified())) {
        m_question->setText(entry.question);
    }
    if (m_answer->text() != entry.answer && !m_answer->isBeingTyped()) {
        m_answer->showText(entry.answer);
    }
    const QString number = QString::number(index + 1);
    m_question->setAccessibleName(QStringLiteral("Question ") + number);
    m_answer->setAccessibleName(QStringLiteral("Answer ") + number);
    show();
}

void FAQBlock::release() {
    hide();
    m_question->setText({});
    m_answer->showText({});
}

bool FAQBlock::hasFocusInside() const {
    return m_question->hasFocus() || m_answer->hasFocus() || m_trash->hasFocus();
}

bool FAQBlock::isBeingTyped() const {
    return (m_question->hasFocus() && m_question->isModified()) || m_answer->isBeingTyped();
}

void FAQBlock::chainFields() const {
    setTabOrder(m_question, m_answer);
    setTabOrder(m_answer, m_trash);
}

QWidget *FAQBlock::firstField() const {
    return m_question;
}

QWidget *FAQBlock::lastField() const {
    return m_trash;
}

int FAQBlock::heightFor(const FAQEntry &entry, int width) {
    return TextField::lineHeight() + fieldGap +
           TextField::heightFor(entry.answer, fieldsWidth(width), mostAnswerLines) + 2 * blockPadding;
}

void FAQBlock::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    const int left = rowMargins().left();
    const int inner = fieldsWidth(width());
    const int line = TextField::lineHeight();
    m_trash->setScale(textScale());
    const QSize trash = m_trash->sizeHint();
    m_question->setGeometry(left, blockPadding, inner - trash.width() - trashGap, line);
    m_trash->setGeometry(left + inner - trash.width(), blockPadding + (line - trash.height()) / 2, trash.width(),
                         trash.height());
    const int answerTop = blockPadding + line + fieldGap;
    m_answer->setGeometry(left, answerTop, inner, height() - answerTop - blockPadding);
}

bool FAQBlock::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusIn) {
        m_question->setModified(false);
        onFocus();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace quillory::ui
