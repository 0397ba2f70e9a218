// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/StatusSection.h"

#include "Quillory/UI/Settings/SettingsBinding.h"
#include "Quillory/UI/Symbols.h"

#include <QPushButton>

namespace quillory::ui {

namespace {
/// Wide enough for both of its labels.
constexpr double testButtonWidth = 146;
} // namespace

StatusSection::StatusSection(SettingsBinding &binding)
    : FormSection(QStringLiteral("Status")), m_trust(new FormText({}, bodyPoints)),
      m_trustAdvice(
          new FormText(QStringLiteral("Grant it in System Settings → Privacy & Security → Accessibility, then "
                                      "relaunch the app."),
                       captionPoints, Tint::secondary)),
      m_testButton(new QPushButton), m_testResult(new FormText({}, captionPoints)),
      m_accessibility(binding.services().accessibility), m_test(binding.services().settings, binding.services().client,
                                                                binding.services().mainQueue, [this] { showTest(); }) {
    QBoxLayout *const trust = addRow(QBoxLayout::TopToBottom);
    trust->setSpacing(3);
    trust->addWidget(m_trust);
    trust->addWidget(m_trustAdvice);
    QBoxLayout *const test = addRow();
    test->addWidget(m_testButton);
    test->addWidget(m_testResult, 1);
    m_testButton->setAutoDefault(false);
    m_testButton->setMinimumWidth(scaled(testButtonWidth));
    m_testResult->setLines(2);
    connect(m_testButton, &QPushButton::clicked, this, [this] { m_test.run(); });
    showTest();
    binding.onRefresh([this] { showTrust(); }); // it comes and goes while the window is open
}

void StatusSection::showEvent(QShowEvent *event) {
    showTrust();
    QWidget::showEvent(event);
}

void StatusSection::showTrust() {
    const bool isTrusted = m_accessibility.isProcessTrusted();
    const Tint tint = isTrusted ? Tint::good : Tint::warning;
    m_trust->setSymbol(isTrusted ? symbolName::done : symbolName::warning, tint);
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
    m_testResult->setText(result);
    m_testResult->setTint(result.startsWith(u'✓') ? Tint::good : Tint::bad);
}

} // namespace quillory::ui
