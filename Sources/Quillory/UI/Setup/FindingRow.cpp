// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Setup/FindingRow.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Symbols.h"

#include <QGridLayout>
#include <QPushButton>

namespace quillory::ui {

namespace {

SymbolView *symbolFor(Finding::State state) {
    switch (state) {
    case Finding::State::good:
        return new SymbolView(symbolName::done, bodyPoints, Tint::good);
    case Finding::State::note:
        return new SymbolView(symbolName::warning, bodyPoints, Tint::secondary);
    case Finding::State::problem:
        break;
    }
    return new SymbolView(symbolName::warning, bodyPoints, Tint::warning);
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
    grid->setColumnStretch(1, 1);
    grid->addWidget(symbolFor(finding.state), 0, 0);
    grid->addWidget(new FormText(finding.title, bodyPoints), 0, 1);
    // A button says what to do better than a command to type.
    const auto offer = offerFor(finding);
    const QString advice = offer || finding.advice.isEmpty() ? QString() : u'\n' + finding.advice;
    grid->addWidget(new FormText(withCapital(finding.found) + advice, captionPoints, Tint::secondary), 1, 1);
    if (offer) {
        auto *const button = new QPushButton(offer->label);
        button->setAutoDefault(false);
        button->setAccessibleName(finding.title + QStringLiteral(": ") + offer->label);
        connect(button, &QPushButton::clicked, this, [finding, mend = std::move(mend)] { mend(finding); });
        grid->addWidget(button, 0, 2, 2, 1, Qt::AlignVCenter);
    }
}

} // namespace quillory::ui
