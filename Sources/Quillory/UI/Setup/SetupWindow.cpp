// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Setup/SetupWindow.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Form/FormStyle.h"
#include "Quillory/UI/Setup/KeySection.h"
#include "Quillory/UI/Shell/StatusItem.h"
#include "Quillory/UI/Shell/Windows.h"
#include "Quillory/UI/Symbols.h"

#include <QGridLayout>
#include <QIcon>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quillory::ui {

namespace {
constexpr QSize initialSize(600, 640);
constexpr std::chrono::seconds watchInterval(2);

/// Host names stay as they are.
QString withCapital(const QString &text) {
    return text.section(u' ', 0, 0).contains(u'.') ? text : text.left(1).toUpper() + text.mid(1);
}

/// One finding: how it stands, what was found, what to do, and a button for what can be done about it here.
QWidget *newFindingRow(const Finding &finding, std::function<void()> repair) {
    auto *const row = new QWidget;
    auto *const grid = new QGridLayout(row);
    grid->setContentsMargins(rowMargins());
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    auto *const title = new FormText(finding.title, bodyPoints);
    const bool isGood = finding.state == Finding::State::good;
    const Tint unwell = finding.state == Finding::State::note ? Tint::secondary : Tint::warning;
    title->setSymbol(isGood ? symbolName::done : symbolName::warning, isGood ? Tint::good : unwell);
    grid->addWidget(title, 0, 0);
    // A button says what to do better than a command to type.
    const auto offer = offerFor(finding);
    const QString advice = offer || finding.advice.isEmpty() ? QString() : u'\n' + finding.advice;
    auto *const found = new FormText(withCapital(finding.found) + advice, captionPoints, Tint::secondary);
    found->setIndent(title->indent());
    grid->addWidget(found, 1, 0);
    if (offer) {
        auto *const button = new QPushButton(offer->label);
        button->setAutoDefault(false);
        button->setAccessibleName(finding.title + QStringLiteral(": ") + offer->label);
        QObject::connect(button, &QPushButton::clicked, row, std::move(repair));
        grid->addWidget(button, 0, 1, 2, 1, Qt::AlignVCenter);
    }
    return row;
}
} // namespace

SetupWindow::SetupWindow(SetupWork work, platform::MainQueue &mainQueue)
    : m_work(work), m_mainQueue(mainQueue), m_list(newFormArea()),
      m_key(new KeySection(work.access(), mainQueue, [this](const QString &typed) { saveKey(typed); })),
      m_status(new FormText({}, captionPoints, Tint::secondary)),
      m_again(new QPushButton(QStringLiteral("Check &Again"))), m_close(new QPushButton(QStringLiteral("&Close"))) {
    FormStyle::install();
    setFormFont(*this, bodyPoints);
    setWindowTitle(QStringLiteral("Set Up Quillory"));
    setWindowIcon(programIcon());
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(pageMargins());
    column->setSpacing(sectionGap);
    // The scroll bar stands in the margin, so that everything ends at one line.
    m_key->setContentsMargins(0, 0, m_list->verticalScrollBar()->sizeHint().width(), 0);
    auto *const bottom = bottomRow();
    bottom->setContentsMargins(m_key->contentsMargins());
    column->addWidget(m_key);
    column->addWidget(m_list, 1);
    column->addWidget(bottom);
    resize(initialSize);
    placeAtPointer(*this);
    closeByKeys(*this);
    m_key->focusField();
    connect(&m_watchTimer, &QTimer::timeout, this, &SetupWindow::watch);
    m_watchTimer.start(watchInterval);
    look();
}

SetupWindow::~SetupWindow() = default;

QWidget *SetupWindow::bottomRow() {
    auto *const row = new QWidget;
    auto *const line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(10);
    line->addWidget(m_status, 1);
    line->addWidget(m_again);
    line->addWidget(m_close);
    m_again->setAutoDefault(false);
    m_close->setAutoDefault(false);
    connect(m_again, &QPushButton::clicked, this, [this] {
        m_work.access().settings.store().askAgain();
        look();
    });
    connect(m_close, &QPushButton::clicked, this, [this] { close(); });
    return row;
}

template <typename Work, typename Done> void SetupWindow::start(const QString &said, Work work, Done done) {
    if (m_isBusy) {
        return;
    }
    setBusy(true, said);
    const auto task = m_tasks.start([this, work, done](const std::stop_token &stop) {
        m_mainQueue.post(m_life.whileAlive([this, done, result = work(stop)] {
            setBusy(false, {});
            done(result);
            if (!m_isBusy) {
                m_key->saveWaiting();
            }
        }));
    });
    if (!task) {
        setBusy(false, QStringLiteral("The system could not start another thread. Try again later."));
    }
}

void SetupWindow::look() {
    start(
        QStringLiteral("Looking…"), [work = m_work](const std::stop_token &stop) { return work.look(stop); },
        [this](const std::vector<Finding> &findings) { show(findings); });
}

/// Shows that a program has been closed and opened again without the user's asking.
void SetupWindow::watch() {
    if (m_isBusy || m_isWatching) {
        return;
    }
    const auto task = m_tasks.start([this](const std::stop_token &stop) {
        m_mainQueue.post(m_life.whileAlive([this, found = m_work.lookForChanges(stop)] {
            m_isWatching = false;
            if (found && !m_isBusy) { // a look that is under way will show it
                show(*found);
            }
        }));
    });
    m_isWatching = task.has_value();
}

void SetupWindow::show(std::vector<Finding> findings) {
    std::ranges::stable_sort(findings, std::greater(), &Finding::state); // what needs doing comes first
    auto *const page = new QWidget;
    auto *const column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    auto *const section = new FormSection(QStringLiteral("What Quillory needs"));
    for (const Finding &finding : findings) {
        section->addRow(newFindingRow(finding, [this, finding] { repair(finding); }));
    }
    column->addWidget(section);
    column->addStretch(1);
    m_list->setWidget(page);
    orderFocus(*page);
    page->setAutoFillBackground(false);
    m_canWork = quillory::canWork(findings);
    m_key->setKeyKnown(
        std::ranges::none_of(findings, [](const Finding &finding) { return finding.remedy == Remedy::enterKey; }));
    const QString ready = isAtWork(findings)
                              ? QStringLiteral("Everything is ready. Click into WhatsApp's message box and type.")
                              : QStringLiteral("Everything is in order. Start Quillory now.");
    const QString verdict = m_canWork ? ready : QStringLiteral("Something is still missing.");
    m_status->setText(m_outcome.isEmpty() ? verdict : m_outcome + u' ' + verdict);
}

/// Tab goes through the window from top to bottom. After a repair the row that had the focus is gone, so the focus goes
/// to the first button that is left, unless the user has moved on to the key.
void SetupWindow::orderFocus(const QWidget &page) {
    const auto buttons = page.findChildren<QPushButton *>();
    if (!buttons.isEmpty()) {
        setTabOrder(buttons.last(), m_again);
        setTabOrder(m_again, m_close);
    }
    const QWidget *const focused = focusWidget();
    const bool hasRepaired = std::exchange(m_hasRepaired, false);
    if (focused == nullptr || (hasRepaired && !m_key->isAncestorOf(focused))) {
        (buttons.isEmpty() ? m_close : buttons.first())->setFocus(Qt::TabFocusReason);
    }
}

void SetupWindow::repair(const Finding &finding) {
    if (finding.remedy == Remedy::enterKey) {
        m_key->focusField();
        return;
    }
    start(
        QStringLiteral("Working…"),
        [work = m_work, finding](const std::stop_token &stop) { return work.repair(finding, stop); },
        [this](const QString &outcome) {
            m_outcome = outcome;
            m_hasRepaired = true;
            look();
        });
}

void SetupWindow::saveKey(const QString &typed) {
    start(
        QStringLiteral("Saving…"),
        [work = m_work, typed](const std::stop_token &stop) { return work.saveKey(typed, stop); },
        [this](const SavedKey &saved) {
            m_key->showOutcome(saved.sentence, saved.isSaved);
            if (saved.isSaved) {
                m_outcome.clear();
                look();
            }
        });
}

void SetupWindow::setBusy(bool isBusy, const QString &said) {
    m_isBusy = isBusy;
    if (isBusy) {
        holdFocus();
    }
    m_status->setText(said);
    m_again->setEnabled(!isBusy);
    m_key->setBusy(isBusy);
    if (QWidget *const page = m_list->widget()) {
        page->setEnabled(!isBusy);
    }
    if (!isBusy && m_pressed != nullptr && focusWidget() == nullptr) {
        m_pressed->setFocus(Qt::OtherFocusReason);
    }
}

/// A disabled button hands the focus on, in the end to "Close", which a second press of the same key would then click.
void SetupWindow::holdFocus() {
    m_pressed = qobject_cast<QPushButton *>(focusWidget());
    if (m_pressed != nullptr) {
        m_pressed->clearFocus();
    }
}

} // namespace quillory::ui
