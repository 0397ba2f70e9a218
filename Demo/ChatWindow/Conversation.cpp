// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChatWindow/Conversation.h"

#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>

namespace quillory::demo {

namespace {

constexpr int widestText = 330;

/// A label as wide as its text, so that its position shows who wrote it. With word wrap alone the layout could choose
/// any width.
QLabel *fittingLabel(const QString &text, const QString &name, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->ensurePolished();
    const QRect wrapped =
        label->fontMetrics().boundingRect(QRect(0, 0, widestText, 10'000), Qt::TextWordWrap | Qt::TextExpandTabs, text);
    label->setWordWrap(true);
    label->setFixedWidth(wrapped.width() + 4);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::NoFocus);
    return label;
}

} // namespace

Conversation::Conversation(QWidget *parent) : QScrollArea(parent) {
    setObjectName(QStringLiteral("conversation"));
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *page = new QWidget(this);
    page->setObjectName(QStringLiteral("page"));
    m_rows = new QVBoxLayout(page);
    m_rows->setContentsMargins(18, 16, 18, 16);
    m_rows->setSpacing(8);
    m_rows->addStretch();
    setWidget(page);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int, int maximum) { verticalScrollBar()->setValue(maximum); });
}

void Conversation::add(Sender sender, const QString &text, const QString &time) {
    const bool ours = sender == Sender::us;
    auto *bubble = new QWidget(widget());
    bubble->setAttribute(Qt::WA_StyledBackground);
    bubble->setObjectName(ours ? QStringLiteral("ours") : QStringLiteral("theirs"));
    auto *row = new QHBoxLayout(bubble);
    row->setContentsMargins(13, 8, 11, 8);
    row->setSpacing(10);
    row->addWidget(fittingLabel(text, QStringLiteral("text"), bubble));
    row->addWidget(fittingLabel(time, QStringLiteral("time"), bubble), 0, Qt::AlignBottom);
    m_rows->addWidget(bubble, 0, ours ? Qt::AlignRight : Qt::AlignLeft);
}

} // namespace quillory::demo
