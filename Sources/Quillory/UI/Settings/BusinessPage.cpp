// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/BusinessPage.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/TextField.h"
#include "Quillory/UI/Settings/FAQSection.h"
#include "Quillory/UI/Settings/SettingsBinding.h"

#include <QScrollArea>
#include <QTimer>

#include <memory>

namespace quillory::ui {

namespace {
constexpr int profileHeight = 80;

FormSection *newProfileSection(SettingsBinding &binding) {
    auto *const section = new FormSection(
        {}, QStringLiteral("When a chat is open and your input box is empty, the visible conversation is read locally "
                           "and a reply is drafted. Nothing is sent automatically, and nothing is stored."));
    auto *const label =
        new FormText(QStringLiteral("M&y business (used to write replies in your voice):"), fieldPoints);
    auto *const profile = new TextField;
    label->setBuddy(profile);
    profile->setFixedHeight(scaled(profileHeight));
    QBoxLayout *const row = section->addRow(QBoxLayout::TopToBottom);
    row->addWidget(label);
    row->addWidget(profile);

    // The profile as it was last shown or stored.
    const auto known = std::make_shared<QString>();
    binding.onRefresh([=, &binding] {
        const QString stored = binding.store().string(settingsKey::businessProfile).value_or(QString());
        if (stored != *known && !profile->isBeingTyped()) {
            *known = stored;
            profile->showText(stored);
        }
    });
    profile->onEdit = [=, &binding] {
        const auto stored = binding.store().string(settingsKey::businessProfile);
        if (stored && *stored != *known) { // another process's, which the user has not seen
            binding.store().set(settingsKey::businessProfile + QStringLiteral(".replaced"), *stored);
        }
        *known = profile->text();
        binding.set(settingsKey::businessProfile, *known);
    };
    return section;
}

} // namespace

QWidget *newBusinessPage(SettingsBinding &binding, QScrollArea &area) {
    auto *const faqs = new FAQSection(binding.services().settings);
    faqs->onReveal = [&area](QWidget *row) {
        // Once the page has the height that the row was added to.
        QTimer::singleShot(0, row, [&area, row] { area.ensureWidgetVisible(row, 0, 20); });
    };
    QWidget *const page = newFormPage({newProfileSection(binding), faqs});
    setFormFont(*page, fieldPoints);
    return page;
}

} // namespace quillory::ui
