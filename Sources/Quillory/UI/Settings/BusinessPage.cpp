// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/BusinessPage.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/TextField.h"
#include "Quillory/UI/Settings/FAQSection.h"
#include "Quillory/UI/Settings/SettingsBinding.h"

#include <QScrollArea>
#include <QTimer>

namespace quillory::ui {

namespace {
constexpr int profileHeight = 80;
}

BusinessPage::BusinessPage(SettingsBinding &binding, QScrollArea &area) : m_profile(new TextField) {
    setFormFont(*this, fieldPoints);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(pageMargins());
    column->setSpacing(sectionGap);
    column->addWidget(profileSection(binding));
    auto *const faqs = new FAQSection(binding.services().settings);
    column->addWidget(faqs);
    column->addStretch();
    faqs->onReveal = [&area](QWidget *row) {
        // Once the page has the height that the row was added to.
        QTimer::singleShot(0, row, [&area, row] { area.ensureWidgetVisible(row, 0, 20); });
    };
}

QWidget *BusinessPage::profileSection(SettingsBinding &binding) {
    auto *const section = new FormSection(
        {}, QStringLiteral("When a chat is open and your input box is empty, the visible conversation is read locally "
                           "and a reply is drafted. Nothing is sent automatically, and nothing is stored."));
    auto *const label =
        new FormText(QStringLiteral("M&y business (used to write replies in your voice):"), fieldPoints);
    label->setBuddy(m_profile);
    m_profile->setFixedHeight(scaled(profileHeight));
    QBoxLayout *const row = section->addRow(QBoxLayout::TopToBottom);
    row->addWidget(label);
    row->addWidget(m_profile);

    binding.onRefresh([this, &binding] {
        const QString stored = binding.store().string(settingsKey::businessProfile).value_or(QString());
        if (stored != m_shownProfile && !m_profile->isBeingTyped()) {
            m_shownProfile = stored;
            m_profile->showText(stored);
        }
    });
    m_profile->onEdit = [this, &binding] {
        const auto stored = binding.store().string(settingsKey::businessProfile);
        if (stored && *stored != m_shownProfile) { // another process's, which the user has not seen
            binding.store().set(settingsKey::businessProfile + QStringLiteral(".replaced"), *stored);
        }
        m_shownProfile = m_profile->text();
        binding.set(settingsKey::businessProfile, m_shownProfile);
    };
    return section;
}

} // namespace quillory::ui
