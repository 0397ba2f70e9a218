// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/SettingsView.h"

#include "Platform/Platform.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/SettingsTabBar.h"
#include "Quillory/UI/Form/SlimScrollBar.h"
#include "Quillory/UI/Settings/BusinessPage.h"
#include "Quillory/UI/Settings/GeneralPage.h"
#include "Quillory/UI/Symbols.h"

#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace quillory::ui {

namespace {
/// How long a change by another process may go unseen.
constexpr std::chrono::milliseconds beat{200};
constexpr QSize contentSize(560, 430);
constexpr int businessTab = 1;
} // namespace

SettingsView::SettingsView()
    : m_binding(AppSettings::shared().store()), m_tabs(new SettingsTabBar), m_pages(new QStackedWidget),
      m_warning(warning()) {
    setFixedSize(contentSize);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 6, 0, 0);
    column->setSpacing(4); // what scrolls ends a little below the tabs
    column->addWidget(m_tabs, 0, Qt::AlignHCenter);
    column->addWidget(m_pages, 1);
    column->addWidget(m_warning);
    m_tabs->add(symbolName::sliders, QStringLiteral("&General"));
    m_tabs->add(symbolName::briefcase, QStringLiteral("&Business"));
    addPage()->setWidget(new GeneralPage(m_binding));
    addPage();
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) { showTab(index); });
    const auto onKeys = [this](const QKeySequence &keys, auto tab) {
        connect(new QShortcut(keys, this), &QShortcut::activated, m_tabs,
                [=, this] { m_tabs->setCurrentIndex(tab()); });
    };
    const auto other = [this] { return (m_tabs->currentIndex() + 1) % m_tabs->count(); };
    onKeys(QKeySequence(Qt::CTRL | Qt::Key_Tab), other);
    onKeys(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), other);
    onKeys(QKeySequence(Qt::ALT | Qt::Key_1), [] { return 0; });
    onKeys(QKeySequence(Qt::ALT | Qt::Key_2), [] { return 1; });
}

QScrollArea *SettingsView::addPage() {
    auto *const page = new QScrollArea;
    page->setWidgetResizable(true);
    page->setFrameShape(QFrame::NoFrame);
    page->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    page->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    page->setVerticalScrollBar(new SlimScrollBar);
    page->setFocusPolicy(Qt::NoFocus);
    page->viewport()->setAutoFillBackground(false);
    m_pages->addWidget(page);
    return page;
}

// The second page is made when it is first looked at: its texts may be long and many.
void SettingsView::showTab(int index) {
    auto *const page = static_cast<QScrollArea *>(m_pages->widget(index));
    if (index == businessTab && page->widget() == nullptr) {
        page->setWidget(new BusinessPage(m_binding, *page));
    }
    if (page->widget() != nullptr) {
        page->widget()->setAutoFillBackground(false);
    }
    m_pages->setCurrentIndex(index);
}

QWidget *SettingsView::warning() {
    auto *const bar = new QWidget;
    auto *const line = new QHBoxLayout(bar);
    line->setContentsMargins(20, 8, 20, 8);
    line->setSpacing(8);
    line->addWidget(new SymbolView(symbolName::warning, bodyPoints, Tint::warning));
    line->addWidget(new FormText(QStringLiteral("Changes cannot be saved to disk now. They count as long as Quillory "
                                                "runs, and it goes on trying to save them."),
                                 captionPoints, Tint::warning),
                    1);
    bar->hide();
    return bar;
}

void SettingsView::refresh() {
    m_binding.refresh();
    m_warning->setVisible(m_binding.store().isFailingToSave());
}

void SettingsView::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    refresh();
    m_beat = platform::current().mainQueue.repeat(beat, [this] { refresh(); });
}

void SettingsView::hideEvent(QHideEvent *event) {
    m_beat.reset();
    QWidget::hideEvent(event);
}

} // namespace quillory::ui
