// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/StatusSection.h"

#include "Platform/Platform.h"
#include "Quillory/UI/Form/ClampedText.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Settings/SettingsBinding.h"
#include "Quillory/UI/Symbols.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace quillory::ui {

StatusSection::StatusSection(SettingsBinding &binding)
    : m_trustSymbol(new SymbolView({}, bodyPoints, Tint::warning)), m_trust(new FormText({}, bodyPoints)),
      m_trustAdvice(
          new FormText(QStringLiteral("Grant it in System Settings → Privacy & Security → Accessibility, then "
                                      "relaunch the app."),
                       captionPoints, Tint::secondary)),
      m_testButton(new QPushButton), m_testResult(new ClampedText(captionPoints, 2)), m_test([this] { showTest(); }) {
    auto *const section = new FormSection(QStringLiteral("Status"));
    section->addRow(trustRow());
    section->addRow(testRow());
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(section);
    showTest();
    binding.onRefresh([this] { showTrust(); }); // it comes and goes while the window is open
}

void StatusSection::showEvent(QShowEvent *event) {
    showTrust();
    QWidget::showEvent(event);
}

QWidget *StatusSection::trustRow() {
    auto *const row = new QWidget;
    auto *const grid = new QGridLayout(row);
    grid->setContentsMargins(rowMargins());
    grid->setHorizontalSpacing(7);
    grid->setVerticalSpacing(3);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_trustSymbol, 0, 0);
    grid->addWidget(m_trust, 0, 1);
    grid->addWidget(m_trustAdvice, 1, 0, 1, 2);
    return row;
}

QWidget *StatusSection::testRow() {
    auto *const row = new QWidget;
    auto *const line = new QHBoxLayout(row);
    line->setContentsMargins(rowMargins());
    line->setSpacing(10);
    line->addWidget(m_testButton);
    line->addWidget(m_testResult, 1);
    m_testButton->setAutoDefault(false);
    m_testButton->setMinimumSize(scaled(146), scaled(26));
    connect(m_testButton, &QPushButton::clicked, this, [this] { m_test.run(); });
    return row;
}

void StatusSection::showTrust() {
    const bool isTrusted = platform::current().accessibility.isProcessTrusted();
    const Tint tint = isTrusted ? Tint::good : Tint::warning;
    m_trustSymbol->setSymbol(isTrusted ? symbolName::done : symbolName::warning, tint);
    m_trust->setText(isTrusted ? QStringLiteral("Accessibility access granted")
                               : QStringLiteral("Accessibility access required"));
    m_trust->setTint(tint);
    m_trustAdvice->setVisible(!isTrusted);
}

void StatusSection::showTest() {
    showTrust();
    m_testButton->setText(m_test.isTesting() ? QStringLiteral("Testing…") : QStringLiteral("Test &AI connection"));
    m_testButton->setEnabled(!m_test.isTesting());
    const QString result = m_test.result().value_or(QString());
    m_testResult->setText(result, result.startsWith(u'✓') ? Tint::good : Tint::bad);
}

} // namespace quillory::ui
