// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/SettingsWindow.h"

#include "Quillory/UI/AccessibleViews.h"
#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/FormStyle.h"
#include "Quillory/UI/Settings/BusinessPage.h"
#include "Quillory/UI/Settings/GeneralPage.h"
#include "Quillory/UI/Shell/Windows.h"
#include "Quillory/UI/Symbols.h"

#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QTabBar>

namespace quillory::ui {

namespace {

/// How long a change by another process may go unseen.
constexpr std::chrono::milliseconds beat{200};
constexpr QSize contentSize(560, 430);
constexpr int businessTab = 1;

FormText *newWarning() {
    auto *const text = new FormText(
        QStringLiteral("Changes cannot be saved to disk now. They count as long as Quillory runs, and it goes on "
                       "trying to save them."),
        captionPoints, Tint::warning);
    text->setSymbol(symbolName::warning, Tint::warning);
    text->setContentsMargins(20, 8, 20, 8);
    text->hide();
    return text;
}

} // namespace

SettingsWindow::SettingsWindow(const SettingsServices &services)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      m_binding(services), m_tabs(new QTabBar), m_pages(new QStackedWidget), m_warning(newWarning()) {
    installAccessibleViews();
    FormStyle::install();
    setWindowTitle(QStringLiteral("Quillory"));
    setFormFont(*this, bodyPoints);
    setFixedSize(contentSize);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 6, 0, 0);
    column->setSpacing(4); // what scrolls ends a little below the tabs
    column->addWidget(m_tabs, 0, Qt::AlignHCenter);
    column->addWidget(m_pages, 1);
    column->addWidget(m_warning);
    m_tabs->setDrawBase(false);
    m_tabs->setExpanding(false);
    setFormFont(*m_tabs, captionPoints);
    addTab(symbolName::sliders, QStringLiteral("&General"));
    addTab(symbolName::briefcase, QStringLiteral("&Business"));
    showTab(0);
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) { showTab(index); });
    chooseTabsByKeys();
    closeByKeys(*this);
    placeAtPointer(*this);
}

void SettingsWindow::addTab(const QString &symbol, const QString &label) {
    m_tabs->addTab(symbolIcon(symbol), label);
    m_pages->addWidget(newFormArea());
}

// A page is made when it is first looked at: the texts of the second one may be long and many.
void SettingsWindow::showTab(int index) {
    auto *const area = static_cast<QScrollArea *>(m_pages->widget(index));
    if (area->widget() == nullptr) {
        area->setWidget(index == businessTab ? newBusinessPage(m_binding, *area) : newGeneralPage(m_binding));
    }
    m_pages->setCurrentIndex(index);
}

void SettingsWindow::chooseTabsByKeys() {
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

void SettingsWindow::makeKeyAndOrderFront() {
    bringToFront(*this, m_binding.services().workspace);
}

void SettingsWindow::refresh() {
    m_binding.refresh();
    m_warning->setVisible(m_binding.store().isFailingToSave());
}

void SettingsWindow::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    refresh();
    m_beat = m_binding.services().mainQueue.repeat(beat, [this] { refresh(); });
}

void SettingsWindow::hideEvent(QHideEvent *event) {
    m_beat.reset();
    QWidget::hideEvent(event);
}

} // namespace quillory::ui
