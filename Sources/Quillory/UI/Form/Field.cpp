// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/Field.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/SlimScrollBar.h"
#include "Quillory/UI/Form/SoftBreaks.h"
#include "Quillory/UI/Look.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>
#include <QValidator>

#include <algorithm>

namespace quillory::ui {

namespace {

constexpr double fieldRadius = 6;
constexpr int fieldSideMargin = 6;
constexpr int fieldTopMargin = 4;
/// Without it the toolkit finds the last line too large for its field, and scrolls.
constexpr int fieldSlack = 1;

bool isControl(QChar character) {
    return character.category() == QChar::Other_Control;
}

/// Word processors end a line within a paragraph with one of these.
bool isLineBreak(QChar character) {
    constexpr auto breaks = u"\n\r\v\f\u0085\u2028\u2029";
    return QStringView(breaks).contains(character);
}

/// The text with line breaks of one kind and without other control characters.
QString cleaned(QString text, QChar lineBreak) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar &character : text) {
        if (isLineBreak(character)) {
            character = lineBreak;
        }
    }
    text.removeIf([lineBreak](QChar c) { return isControl(c) && c != lineBreak && c != u'\t'; });
    return text;
}

/// Cleans what is typed or pasted into a single line.
class OneLine final : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString &input, int &position) const override {
        position = static_cast<int>(cleaned(input.left(position), u' ').size());
        input = cleaned(input, u' ');
        return Acceptable;
    }
};

void paintField(QPainter &painter, const QWidget &field) {
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(field.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(faded(lookOf(field).primary, 0.15), 1));
    painter.setBrush(field.palette().color(QPalette::Window).lightness() < 128
                         ? field.palette().color(QPalette::Window).darker(125)
                         : QColor(Qt::white));
    painter.drawPath(continuousRoundedRect(frame, fieldRadius - 0.5));
    if (field.hasFocus()) {
        painter.setPen(QPen(faded(field.palette().color(QPalette::Highlight), 0.75), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(continuousRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), fieldRadius - 1));
    }
}

/// The frame paints the background; the placeholder's own colour can be one that cannot be read on it.
void applyColors(QWidget &field) {
    QPalette own = field.palette();
    const QColor placeholder = lookOf(field).tertiary;
    if (own.color(QPalette::Base) != Qt::transparent || own.color(QPalette::PlaceholderText) != placeholder) {
        own.setColor(QPalette::Base, Qt::transparent);
        own.setColor(QPalette::PlaceholderText, placeholder);
        field.setPalette(own);
    }
}

} // namespace

LineField::LineField(const QString &placeholder) {
    setPlaceholderText(placeholder);
    setFont(formFont(fieldPoints));
    setFrame(false);
    setTextMargins(fieldSideMargin - 2, 0, fieldSideMargin - 2, 0);
    setValidator(new OneLine(this));
    applyColors(*this);
}

QSize LineField::sizeHint() const {
    return {0, TextField::lineHeight()};
}

void LineField::changeEvent(QEvent *event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(fieldPoints));
    } else if (event->type() == QEvent::PaletteChange) {
        applyColors(*this);
    }
}

void LineField::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    paintField(painter, *this);
    painter.end();
    QLineEdit::paintEvent(event);
}

TextField::TextField(const QString &placeholder) {
    setPlaceholderText(placeholder);
    setAccessibleDescription(placeholder); // the toolkit tells that of single lines only
    setFont(formFont(fieldPoints));
    setFrameShape(NoFrame);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    alignToScript();
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar);
    setViewportMargins(fieldSideMargin, fieldTopMargin, fieldSideMargin, fieldTopMargin);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    applyColors(*this);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] {
        if (m_hasSoftBreaks && textCursor().block().length() <= 1) {
            setCurrentCharFormat({}); // else what is typed here would take on what the break before it has
        }
    });
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        alignToScript();
        if (!m_isShowing && onEdit) {
            onEdit();
        }
    });
}

QString TextField::text() const {
    return m_hasSoftBreaks ? softBreaks::textBetween(*document(), 0, document()->characterCount() - 1)
                           : document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

void TextField::showText(const QString &text) {
    m_isShowing = true;
    const int position = textCursor().position();
    m_hasSoftBreaks = softBreaks::areNeeded(text);
    if (m_hasSoftBreaks) {
        clear();
        softBreaks::insert(QTextCursor(document()), text);
        document()->clearUndoRedoStacks();
    } else {
        setPlainText(text);
    }
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(position, document()->characterCount() - 1));
    setTextCursor(cursor);
    document()->setModified(false);
    m_isShowing = false;
}

// Each paragraph runs in the direction of its own script; the toolkit can align only all of them to one side.
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

int TextField::lineHeight() {
    return qCeil(QFontMetricsF(formFont(fieldPoints)).height()) + fieldSlack + 2 * fieldTopMargin;
}

int TextField::heightFor(const QString &text, int width, int mostLines) {
    // As much as can be in so many lines; a long text is not laid out for the sake of its first lines.
    constexpr qsizetype mostPerLine = 400;
    QString start = text.left(mostLines * mostPerLine);
    start.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(start, formFont(fieldPoints));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    double height = 0;
    for (int lines = 0; lines < mostLines; ++lines) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width - 2 * fieldSideMargin);
        height += line.height();
    }
    layout.endLayout();
    return std::max(lineHeight(), qCeil(height) + fieldSlack + 2 * fieldTopMargin);
}

bool TextField::event(QEvent *event) {
    if (event->type() == QEvent::Paint) { // of the frame; the text is the viewport's
        QPainter painter(this);
        paintField(painter, *this);
        return true;
    }
    return QPlainTextEdit::event(event);
}

void TextField::changeEvent(QEvent *event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(formFont(fieldPoints));
    } else if (event->type() == QEvent::PaletteChange) {
        applyColors(*this);
    }
}

void TextField::focusInEvent(QFocusEvent *event) {
    document()->setModified(false);
    QPlainTextEdit::focusInEvent(event);
    update();
}

void TextField::focusOutEvent(QFocusEvent *event) {
    QPlainTextEdit::focusOutEvent(event);
    update();
}

void TextField::insertFromMimeData(const QMimeData *source) {
    if (!source->hasText()) {
        return;
    }
    const QString text = cleaned(source->text(), u'\n');
    if (softBreaks::areNeeded(text)) {
        m_hasSoftBreaks = true;
        softBreaks::insert(textCursor(), text);
    } else {
        textCursor().insertText(text);
    }
    ensureCursorVisible();
}

QMimeData *TextField::createMimeDataFromSelection() const {
    const QTextCursor cursor = textCursor();
    auto *const selected = new QMimeData;
    selected->setText(softBreaks::textBetween(*document(), cursor.selectionStart(), cursor.selectionEnd()));
    return selected;
}

// A key that deletes shall not be spent on a break that the user does not know of.
void TextField::keyPressEvent(QKeyEvent *event) {
    QTextCursor cursor = textCursor();
    if (m_hasSoftBreaks && !cursor.hasSelection()) {
        const bool isBack = event->key() == Qt::Key_Backspace;
        const bool isForward = event->key() == Qt::Key_Delete;
        if ((isBack && cursor.atBlockStart() && softBreaks::isContinued(cursor.block())) ||
            (isForward && cursor.atBlockEnd() && softBreaks::isContinued(cursor.block().next()))) {
            cursor.movePosition(isBack ? QTextCursor::PreviousCharacter : QTextCursor::NextCharacter);
            setTextCursor(cursor);
        }
    }
    QPlainTextEdit::keyPressEvent(event);
}

} // namespace quillory::ui
