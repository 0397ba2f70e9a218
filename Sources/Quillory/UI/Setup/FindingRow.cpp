// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Setup/FindingRow.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Symbols.h"

#include <QGridLayout>
#include <QPushButton>

namespace quillory::ui {

namespace {

void showState(FormText &title, Finding::State state) {
    switch (state) {
    case Finding::State::good:
        title.setSymbol(symbolName::done, Tint::good);
        break;
    case Finding::State::note:
        title.setSymbol(symbolName::warning, Tint::secondary);
        break;
    case Finding::State::problem:
        title.setSymbol(symbolName::warning, Tint::warning);
        break;
    }
}

/// Host names stay as they are.
QString withCapital(const QString &text) {
    return text.section(u' ', 0, 0).contains(u'.') ? text : text.left(1).toUpper() + text.mid(1);
}

} // namespace

FindingRow::FindingRow(const Finding &finding, std::function<void(const Finding &)> mend) {
    auto *const grid = new QGridLayout(this);
    grid->setContentsMargins(rowMargins());
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    auto *const title = new FormText(finding.title, bodyPoints);
    showState(*title, finding.state);
    grid->addWidget(title, 0, 0);
    // A button says what to do better than a command to type.
    const auto offer = offerFor(finding);
    const QString advice = offer || finding.advice.isEmpty() ? QString() : u'\n' + finding.advice;
    auto *const found = new FormText(withCapital(finding.found) + advice, captionPoints, Tint::secondary);
    found->setIndent(title->indent());
    grid->addWidget(found, 1, 0);
    if (offer) {
        auto *const button = new QPushButton(offer->label);
        button->setAutoDefault(false);
        button->setAccessibleName(finding.title + QStringLiteral(": ") + offer->label);
        connect(button, &QPushButton::clicked, this, [finding, mend = std::move(mend)] { mend(finding); });
        grid->addWidget(button, 0, 1, 2, 1, Qt::AlignVCenter);
    }
}

} // namespace quillory::ui
