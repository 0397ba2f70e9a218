// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/PasteQueue.h"

#include "Platform/Keys.h"
#include "Platform/Workspace.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Records/FileLog.h"

#include <utility>

namespace quillory {

namespace {

using namespace std::chrono_literals;

// Long enough for an application to come to the front, and to have fetched the pasteboard.
constexpr auto pauseBeforeKeys = 250ms;
constexpr auto pauseBeforeRestore = 700ms;
// For the user to release the keys, and for the focus to come back.
constexpr auto fingerRetries = 2s / retryInterval;
constexpr auto focusRetries = 1s / retryInterval;
// For an application too busy to fetch the text in that time, which would paste what is given back too soon.
constexpr auto fetchRetries = 2s / retryInterval;
constexpr int saveAttempts = 3;

} // namespace

PasteQueue::PasteQueue(const AXText &ax, const Services &services)
    : m_ax(ax), m_services(services), m_steps(services.mainQueue) {}

PasteQueue::~PasteQueue() {
    if (m_textIsOut && m_services.pasteboard.changeCount() == m_changeCount) {
        restorePasteboard();
    }
}

void PasteQueue::paste(PasteRequest request) {
    m_requests.push_back(std::move(request));
    if (m_requests.size() == 1) {
        begin();
    }
}

void PasteQueue::begin() {
    m_activatedAgain = false;
    activateTarget();
    save(saveAttempts);
}

// Reading may take a while. If the user copies something meanwhile, that is what has to come back.
void PasteQueue::save(int attempts) {
    const auto before = m_services.pasteboard.changeCount();
    m_services.pasteboard.copyItems(m_life.whileAlive([this, attempts, before](auto items) {
        if (attempts > 1 && m_services.pasteboard.changeCount() != before) {
            save(attempts - 1);
            return;
        }
        if (!items) {
            FileLog::log(QStringLiteral("pasteboard could not be read, not pasting"));
            next();
            return;
        }
        m_saved = *std::move(items);
        putText();
        awaitFocus();
    }));
}

void PasteQueue::activateTarget() {
    m_services.workspace.activate(request().target.pid());
}

void PasteQueue::putText() {
    auto &pasteboard = m_services.pasteboard;
    pasteboard.clearContents();
    pasteboard.setString(request().text);
    m_changeCount = pasteboard.changeCount();
    m_textIsOut = true;
}

void PasteQueue::awaitFocus() {
    m_steps.run({{[this] { return fingersAreUp(); }, pauseBeforeKeys, fingerRetries, Attempt::succeeded},
                 {[this] { return focusIsThere(); }, 0ms, focusRetries, Attempt::failed}},
                [this](bool isThere) {
                    if (isThere) {
                        ifTextIsThere([this](bool isOurs) { typeAndRestore(isOurs); });
                    } else {
                        giveUp("focus left the field");
                    }
                });
}

// Checking the text may have taken a moment, so the focus is checked once more.
void PasteQueue::typeAndRestore(bool textIsThere) {
    if (!textIsThere) {
        giveUp("pasteboard was taken by another program");
        return;
    }
    if (focusIsThere() != Attempt::succeeded) {
        giveUp("focus left the field");
        return;
    }
    m_fetchCount = m_services.pasteboard.fetchCount();
    m_services.keys.postKey(platform::keyCode::a, platform::eventFlag::command);
    m_services.keys.postKey(platform::keyCode::v, platform::eventFlag::command);
    m_steps.run({{[this] { return textIsFetched(); }, pauseBeforeRestore, fetchRetries, Attempt::succeeded}},
                [this](bool) { finish(); });
}

// A program that has taken over the pasteboard does not report when its content is fetched.
Attempt PasteQueue::textIsFetched() const {
    const bool isKnown = m_services.pasteboard.changeCount() == m_changeCount;
    return isKnown && m_services.pasteboard.fetchCount() == m_fetchCount ? Attempt::retry : Attempt::succeeded;
}

void PasteQueue::giveUp(const char *reason) {
    FileLog::log(QLatin1StringView(reason) + QStringLiteral(", not pasting"));
    finish();
}

// Whether a paste would still give our text. A clipboard manager may have taken over the pasteboard, text and all.
void PasteQueue::ifTextIsThere(std::function<void(bool)> then) {
    if (m_services.pasteboard.changeCount() == m_changeCount) {
        then(true);
        return;
    }
    m_services.pasteboard.copyString(
        m_life.whileAlive([this, then = std::move(then)](const auto &string) { then(string == request().text); }));
}

// A key poster copes with a modifier that stays down, if less well, so after the wait the keys go out anyway.
Attempt PasteQueue::fingersAreUp() const {
    return m_services.keys.userHoldsKeys() ? Attempt::retry : Attempt::succeeded;
}

Attempt PasteQueue::focusIsThere() {
    const auto focused = m_ax.focusedElement();
    if (focused && (*focused == request().target || isCopyOfTarget(*focused))) {
        return Attempt::succeeded;
    }
    if (!std::exchange(m_activatedAgain, true)) {
        activateTarget();
    }
    return Attempt::retry;
}

bool PasteQueue::isCopyOfTarget(const platform::AXUIElement &focused) const {
    const auto &known = request().lastSeen;
    if (!known || focused.pid() != known->pid || !AXText::isTextElement(focused)) {
        return false;
    }
    const auto candidate = snapshot(focused);
    return candidate && isRecreated(*known, *candidate);
}

// What the user copied meanwhile stays.
void PasteQueue::finish() {
    ifTextIsThere([this](bool isThere) {
        if (isThere) {
            restorePasteboard();
        }
        next();
    });
}

void PasteQueue::restorePasteboard() {
    m_services.pasteboard.clearContents();
    m_services.pasteboard.writeObjects(m_saved);
}

void PasteQueue::next() {
    m_textIsOut = false;
    m_saved.clear(); // it may be large, or secret
    m_requests.pop_front();
    if (!m_requests.empty()) {
        begin();
    }
}

} // namespace quillory
