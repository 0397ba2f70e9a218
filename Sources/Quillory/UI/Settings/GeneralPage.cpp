// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/GeneralPage.h"

#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Settings/SettingsBinding.h"
#include "Quillory/UI/Settings/StatusSection.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>

#include <algorithm>

namespace quillory::ui {

namespace {

constexpr int shortestDelay = 300;
constexpr int longestDelay = 1500;
constexpr int delayStep = 50;
constexpr int delayWidth = 180;
constexpr int fewestCharacters = 1;
constexpr int mostCharacters = 100;

/// A stored number may be anything; a control shows the nearest that it can.
int within(qint64 value, int least, int most) {
    return static_cast<int>(std::clamp<qint64>(value, least, most));
}

QWidget *switchFor(const QString &label, const QString &key, SettingsBinding &binding) {
    auto *const row = new QCheckBox(label);
    binding.onRefresh([=, &binding] { row->setChecked(binding.store().boolean(key)); });
    QObject::connect(row, &QCheckBox::clicked, row, [key, &binding](bool on) { binding.set(key, on); });
    return row;
}

/// A row with a label and the control that it names at its other end.
void addControl(FormSection &section, FormText *label, QWidget *control) {
    label->setBuddy(control);
    QBoxLayout *const row = section.addRow();
    row->addWidget(label, 1);
    row->addWidget(control);
}

QComboBox *tonePopUp(SettingsBinding &binding) {
    auto *const popUp = new QComboBox;
    for (const Tone tone : allTones) {
        popUp->addItem(rawValue(tone));
    }
    binding.onRefresh([=, &binding] {
        const QString tone = binding.store().string(settingsKey::tone).value_or(rawValue(Tone::professional));
        if (!popUp->view()->isVisible()) {
            popUp->setCurrentIndex(popUp->findText(tone, Qt::MatchExactly | Qt::MatchCaseSensitive));
        }
    });
    QObject::connect(popUp, &QComboBox::activated, popUp,
                     [=, &binding](int index) { binding.set(settingsKey::tone, popUp->itemText(index)); });
    return popUp;
}

/// Keeps to the steps wherever the user takes it; a stored value between them shows as it is.
QSlider *delaySlider(SettingsBinding &binding) {
    auto *const slider = new QSlider(Qt::Horizontal);
    slider->setRange(shortestDelay, longestDelay);
    slider->setSingleStep(delayStep);
    slider->setPageStep(2 * delayStep);
    slider->setFixedWidth(delayWidth);
    QObject::connect(slider, &QSlider::actionTriggered, slider, [=, &binding] {
        const int steps = qRound(double(slider->sliderPosition() - shortestDelay) / delayStep);
        slider->setSliderPosition(shortestDelay + steps * delayStep);
        binding.set(settingsKey::debounceMs, qint64{slider->sliderPosition()});
    });
    return slider;
}

FormSection *newBehaviorSection(SettingsBinding &binding) {
    auto *const section = new FormSection(QStringLiteral("Behavior"));
    section->addRow(switchFor(QStringLiteral("&Enable suggestions"), settingsKey::enabled, binding));
    section->addRow(switchFor(QStringLiteral("&Suggest replies in WhatsApp"), settingsKey::assistantMode, binding));

    QComboBox *const tone = tonePopUp(binding);
    addControl(*section, new FormText(QStringLiteral("&Tone"), bodyPoints), tone);

    auto *const delayLabel = new FormText({}, bodyPoints);
    QSlider *const delay = delaySlider(binding);
    addControl(*section, delayLabel, delay);
    binding.onRefresh([=, &binding] {
        const qint64 stored = binding.store().integer(settingsKey::debounceMs);
        delayLabel->setText(QStringLiteral("Trigger &delay: %1 ms").arg(stored));
        if (!delay->isSliderDown()) {
            delay->setValue(within(stored, shortestDelay, longestDelay));
        }
    });

    auto *const charactersLabel = new FormText({}, bodyPoints);
    auto *const characters = new QSpinBox;
    characters->setRange(fewestCharacters, mostCharacters);
    auto *const number = characters->findChild<QLineEdit *>();
    number->hide();
    number->setReadOnly(true); // digits would be typed into it
    addControl(*section, charactersLabel, characters);
    binding.onRefresh([=, &binding] {
        const qint64 stored = binding.store().integer(settingsKey::minChars);
        charactersLabel->setText(QStringLiteral("&Minimum characters: %1").arg(stored));
        const QSignalBlocker quiet(characters);
        characters->setValue(within(stored, fewestCharacters, mostCharacters));
    });
    QObject::connect(characters, &QSpinBox::valueChanged, characters,
                     [&binding](int value) { binding.set(settingsKey::minChars, qint64{value}); });
    return section;
}

} // namespace

QWidget *newGeneralPage(SettingsBinding &binding) {
    return newFormPage({newBehaviorSection(binding), new StatusSection(binding)});
}

} // namespace quillory::ui
