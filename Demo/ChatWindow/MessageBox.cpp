// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChatWindow/MessageBox.h"

#include <QKeyEvent>

#include <algorithm>

namespace quillory::demo {

namespace {
constexpr int lowest = 42;
constexpr int highest = 132;
} // namespace

MessageBox::MessageBox(QWidget *parent) : QTextEdit(parent) {
    setObjectName(QStringLiteral("box"));
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setPlaceholderText(QStringLiteral("Type a message"));
    setAccessibleName(QStringLiteral("Type a message"));
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    connect(this, &QTextEdit::textChanged, this, [this] { fitToText(); });
    fitToText();
}

void MessageBox::keyPressEvent(QKeyEvent *event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !event->modifiers().testFlag(Qt::ShiftModifier)) {
        onSend();
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void MessageBox::resizeEvent(QResizeEvent *event) {
    QTextEdit::resizeEvent(event);
    fitToText();
}

void MessageBox::fitToText() {
    const int wanted = static_cast<int>(document()->size().height()) + 18;
    setFixedHeight(std::clamp(wanted, lowest, highest));
}

} // namespace quillory::demo
