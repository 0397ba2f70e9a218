// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/TextField.h"

#include "Quillory/UI/Form/Form.h"

#include <QAbstractTextDocumentLayout>
#include <QMimeData>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextLayout>
#include <QValidator>

#include <algorithm>

namespace quillory::ui {

namespace {

/// What the text keeps from the frame, so that it begins where that of a single-line field does.
constexpr double sidePadding = 2;

/// The text with line breaks of one kind and without other control characters.
QString cleaned(QString text, const QString &lineBreak) {
    // Word processors end a line within a paragraph with VT or U+2028.
    static const QRegularExpression lineBreaks(QStringLiteral("\\R"));
    static const QRegularExpression controls(QStringLiteral("(?![\n\t])\\p{Cc}"));
    return text.replace(lineBreaks, lineBreak).remove(controls);
}

class LineValidator final : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString &input, int &position) const override {
        const QString space(u' ');
        position = static_cast<int>(cleaned(input.left(position), space).size());
        input = cleaned(input, space);
        return Acceptable;
    }
};

} // namespace

TextField::TextField(const QString &placeholder) {
    setPlaceholderText(placeholder);
    setAccessibleDescription(placeholder); // Qt tells that of single lines only
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(0);
    setViewportMargins(scaled(sidePadding), 0, scaled(sidePadding), 0);
    alignToScript();
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        alignToScript();
        fitLines();
        if (!m_isShowing && onEdit) {
            onEdit();
        }
    });
}

QString TextField::text() const {
    return document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

void TextField::showText(const QString &text) {
    m_isShowing = true;
    const int position = textCursor().position();
    setPlainText(text);
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(position, document()->characterCount() - 1));
    setTextCursor(cursor);
    document()->setModified(false);
    m_isShowing = false;
}

void TextField::growTo(int lines) {
    m_mostLines = lines;
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // it would take its width from the text
    fitLines();
}

// Each paragraph runs in the direction of its own script; Qt can align only all of them to one side.
void TextField::alignToScript() {
    QTextBlock first = document()->begin();
    while (first.length() <= 1 && first.next().isValid()) {
        first = first.next();
    }
    QTextOption option = document()->defaultTextOption();
    const Qt::Alignment side = first.text().isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    if (option.textDirection() != Qt::LayoutDirectionAuto || option.alignment() != side) {
        option.setTextDirection(Qt::LayoutDirectionAuto);
        option.setAlignment(side);
        document()->setDefaultTextOption(option);
    }
}

void TextField::fitLines() {
    if (m_mostLines == 0) {
        return;
    }
    double height = 0;
    int lines = 0;
    for (QTextBlock block = document()->begin(); block.isValid() && lines < m_mostLines; block = block.next()) {
        static_cast<void>(document()->documentLayout()->blockBoundingRect(block)); // lays it out
        for (int i = 0; i < block.layout()->lineCount() && lines < m_mostLines; ++i, ++lines) {
            height += block.layout()->lineAt(i).height();
        }
    }
    constexpr int slack = 1; // without it Qt finds the last line too large for its field, and scrolls
    setFixedHeight(qCeil(std::max(height, QFontMetricsF(font()).height())) + slack + 2 * frameWidth());
}

void TextField::resizeEvent(QResizeEvent *event) {
    QPlainTextEdit::resizeEvent(event);
    fitLines();
}

void TextField::focusInEvent(QFocusEvent *event) {
    document()->setModified(false);
    QPlainTextEdit::focusInEvent(event);
}

void TextField::insertFromMimeData(const QMimeData *source) {
    textCursor().insertText(cleaned(source->text(), QStringLiteral("\n")));
    ensureCursorVisible();
}

QValidator *newLineValidator(QObject *parent) {
    return new LineValidator(parent);
}

} // namespace quillory::ui
