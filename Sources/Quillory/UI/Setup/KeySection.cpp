// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Setup/KeySection.h"

#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace quillory::ui {

namespace {
const QString whereKeysComeFrom = QStringLiteral(
    "Requests go to OpenRouter and need a key of your account there (openrouter.ai, Keys). It goes into the desktop's "
    "password store where there is one, and is never shown again.");

QLineEdit *newKeyField() {
    auto *const field = new QLineEdit;
    setFormFont(*field, fieldPoints);
    field->setEchoMode(QLineEdit::Password);
    field->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                               Qt::ImhNoAutoUppercase);
    field->setAccessibleName(QStringLiteral("API key"));
    return field;
}

} // namespace

KeySection::KeySection(const ModelAccess &access, platform::MainQueue &mainQueue,
                       std::function<void(const QString &)> save)
    : FormSection(QStringLiteral("API key"), whereKeysComeFrom), m_save(std::move(save)), m_field(newKeyField()),
      m_saveButton(new QPushButton(QStringLiteral("&Save Key"))), m_testButton(new QPushButton),
      m_result(new FormText({}, captionPoints)),
      m_test(access.settings, access.client, mainQueue, [this] { showTest(); }) {
    QBoxLayout *const entering = addRow();
    entering->addWidget(m_field, 1);
    entering->addWidget(m_saveButton);
    QBoxLayout *const testing = addRow();
    testing->addWidget(m_testButton);
    testing->addWidget(m_result, 1);
    m_saveButton->setAutoDefault(false);
    m_testButton->setAutoDefault(false);
    m_result->setLines(2);
    connect(m_field, &QLineEdit::textChanged, this, [this] { takeBack(); });
    connect(m_field, &QLineEdit::returnPressed, this, [this] { submit(); });
    connect(m_saveButton, &QPushButton::clicked, this, [this] { submit(); });
    connect(m_testButton, &QPushButton::clicked, this, [this] { m_test.run(); });
    setKeyKnown(false);
}

void KeySection::submit() {
    if (m_field->text().isEmpty()) {
        return;
    }
    showResult(QStringLiteral("Saving… The desktop may ask for the password of its password store."), Tint::secondary);
    m_isWaiting = m_isBusy;
    if (!m_isBusy) {
        m_save(m_field->text());
    }
}

void KeySection::saveWaiting() {
    if (std::exchange(m_isWaiting, false)) {
        submit();
    }
}

/// Half of a key must not be saved because an earlier text was entered.
void KeySection::takeBack() {
    if (std::exchange(m_isWaiting, false)) {
        showResult({}, Tint::secondary);
    }
    showButtons();
}

void KeySection::showOutcome(const QString &sentence, bool isSaved) {
    m_isWaiting = false; // entered once more while it was being saved
    showResult(sentence, isSaved ? Tint::good : Tint::bad);
    if (isSaved) {
        m_field->clear();
        setKeyKnown(true);
    }
}

void KeySection::setKeyKnown(bool hasKey) {
    m_hasKey = hasKey;
    m_field->setPlaceholderText(hasKey ? QStringLiteral("A key is set. Enter another one to replace it.")
                                       : QStringLiteral("Paste your key here"));
    showButtons();
}

void KeySection::setBusy(bool isBusy) {
    m_isBusy = isBusy;
    showButtons();
}

void KeySection::focusField() {
    m_field->setFocus(Qt::OtherFocusReason);
}

void KeySection::showTest() {
    showButtons();
    const QString result = m_test.result().value_or(QString());
    showResult(result, result.startsWith(u'✓') ? Tint::good : Tint::bad);
}

void KeySection::showResult(const QString &text, Tint tint) {
    m_result->setText(text);
    m_result->setTint(tint);
}

void KeySection::showButtons() {
    m_saveButton->setEnabled(!m_isBusy && !m_field->text().isEmpty());
    m_testButton->setText(m_test.isTesting() ? QStringLiteral("Testing…") : QStringLiteral("&Test"));
    m_testButton->setEnabled(!m_isBusy && m_hasKey); // while it tests, it keeps the focus and does nothing
}

} // namespace quillory::ui
