// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/BusinessPage.h"

#include "Quillory/UI/Form/Field.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/LinkButton.h"
#include "Quillory/UI/Settings/FAQList.h"
#include "Quillory/UI/Settings/SettingsBinding.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

namespace quillory::ui {

namespace {
constexpr int profileHeight = 80;
}

BusinessPage::BusinessPage(SettingsBinding &binding, QScrollArea &area)
    : m_area(area), m_faq(AppSettings::shared()), m_profile(new TextField), m_list(new FAQList(m_faq)) {
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(pageMargins());
    column->setSpacing(sectionGap);
    column->addWidget(profileSection(binding));
    column->addWidget(faqSection(binding));
    column->addStretch();
    m_list->installEventFilter(this);
    m_list->onReveal = [this](QWidget *block) { reveal(block); };
    connect(area.verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { followView(); });
    connect(area.verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] { followView(); });
}

QWidget *BusinessPage::profileSection(SettingsBinding &binding) {
    auto *const section = new FormSection(
        {}, QStringLiteral("When a chat is open and your input box is empty, the visible conversation is read locally "
                           "and a reply is drafted. Nothing is sent automatically, and nothing is stored."));
    auto *const label =
        new FormText(QStringLiteral("M&y business (used to write replies in your voice):"), fieldPoints);
    label->setBuddy(m_profile);
    leaveWheelToPage(m_profile);
    m_profile->setFixedHeight(scaled(profileHeight));
    auto *const row = new QWidget;
    auto *const rows = new QVBoxLayout(row);
    rows->setContentsMargins(rowMargins());
    rows->setSpacing(6);
    rows->addWidget(label);
    rows->addWidget(m_profile);
    section->addRow(row);

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

QWidget *BusinessPage::faqSection(SettingsBinding &binding) {
    auto *const section =
        new FormSection(QStringLiteral("FAQs (replies answer from these and never invent what's missing)"));
    section->addRow(m_list);
    auto *const add = new LinkButton(symbolName::plus, QStringLiteral("Add &FAQ"));
    connect(add, &QAbstractButton::clicked, this, [this] { m_list->add(); });
    auto *const row = new QWidget;
    auto *const line = new QHBoxLayout(row);
    line->setContentsMargins(rowMargins() - QMargins(3, 0, 0, 0));
    line->addWidget(add);
    line->addStretch();
    section->addRow(row);
    m_list->setNeighbours(m_profile, add);
    binding.onRefresh([this] { m_list->refresh(); });
    return section;
}

bool BusinessPage::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_list && (event->type() == QEvent::Move || event->type() == QEvent::Show)) {
        followView();
    }
    return QWidget::eventFilter(watched, event);
}

void BusinessPage::followView() {
    const int top = m_list->mapFrom(m_area.viewport(), QPoint()).y();
    m_list->setView(top, top + m_area.viewport()->height());
}

// Once the page has the height that the block was added to.
void BusinessPage::reveal(QWidget *block) {
    QTimer::singleShot(0, block, [this, block] { m_area.ensureWidgetVisible(block, 0, 20); });
}

} // namespace quillory::ui
