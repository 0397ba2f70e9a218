// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/PasteQueue.h"

#include "Platform/Platform.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ActionSequence.h"
#include "Quillory/Records/FileLog.h"

#include <deque>
#include <memory>
#include <utility>

namespace quillory {

namespace {

using namespace std::chrono_literals;

// Long enough for an application to come to the front, and to have fetched the pasteboard.
constexpr auto pauseBeforeKeys = 250ms;
constexpr auto pauseBeforeRestore = 700ms;
// For the user to let go of the keys, and for the focus to come back.
constexpr auto fingerRetries = 2s / retryInterval;
constexpr auto focusRetries = 1s / retryInterval;
// For one that is too busy to fetch it in that time: what comes back too soon is pasted in the text's place.
constexpr auto fetchRetries = 2s / retryInterval;
constexpr int saveAttempts = 3;

// Lives while it has a request to carry out: the main queue and the pasteboard hold it between the steps.
class PasteQueue : public std::enable_shared_from_this<PasteQueue> {
  public:
    static std::shared_ptr<PasteQueue> current() {
        auto queue = working().lock();
        if (!queue) {
            queue = std::make_shared<PasteQueue>();
            working() = queue;
        }
        return queue;
    }
    /// The queue if it has something to do.
    static std::weak_ptr<PasteQueue> &working() {
        static std::weak_ptr<PasteQueue> queue;
        return queue;
    }

    void add(PasteRequest request) {
        m_requests.push_back(std::move(request));
        if (m_requests.size() == 1) {
            begin();
        }
    }

    void abandon() {
        if (m_textIsOut && platform::current().pasteboard.changeCount() == m_changeCount) {
            restorePasteboard();
        }
    }

  private:
    [[nodiscard]] const PasteRequest &request() const { return m_requests.front(); }

    void begin() {
        m_activatedAgain = false;
        activateTarget();
        save(saveAttempts);
    }

    // Reading may take a while; what the user copies meanwhile is what has to come back.
    void save(int attempts) {
        auto &pasteboard = platform::current().pasteboard;
        pasteboard.copyItems([self = shared_from_this(), attempts, before = pasteboard.changeCount()](auto items) {
            if (attempts > 1 && platform::current().pasteboard.changeCount() != before) {
                self->save(attempts - 1);
                return;
            }
            if (!items) {
                FileLog::log(QStringLiteral("pasteboard could not be read, not pasting"));
                self->next();
                return;
            }
            self->m_saved = *std::move(items);
            self->putText();
            self->awaitFocus();
        });
    }

    void activateTarget() const { platform::current().workspace.activate(request().target.pid()); }

    void putText() {
        auto &pasteboard = platform::current().pasteboard;
        pasteboard.clearContents();
        pasteboard.setString(request().text);
        m_changeCount = pasteboard.changeCount();
        m_textIsOut = true;
    }

    void awaitFocus() {
        const auto self = shared_from_this();
        std::vector<Action> actions;
        actions.push_back({[] { return fingersAreUp(); }, pauseBeforeKeys, fingerRetries, Attempt::succeeded});
        actions.push_back({[self] { return self->focusIsThere(); }, 0ms, focusRetries, Attempt::failed});
        runInOrder(std::move(actions), [self](bool isThere) {
            if (isThere) {
                self->ifTextIsThere([self](bool isOurs) { self->typeAndRestore(isOurs); });
            } else {
                self->giveUp("focus left the field");
            }
        });
    }

    // Finding out about the text may have taken a moment, so the focus is looked at once more.
    void typeAndRestore(bool textIsThere) {
        if (!textIsThere) {
            giveUp("pasteboard was taken by another program");
        } else if (focusIsThere() != Attempt::succeeded) {
            giveUp("focus left the field");
        } else {
            m_fetchCount = platform::current().pasteboard.fetchCount();
            postKeys();
            runInOrder({{[self = shared_from_this()] { return self->textIsFetched(); }, pauseBeforeRestore,
                         fetchRetries, Attempt::succeeded}},
                       [self = shared_from_this()](bool) { self->finish(); });
        }
    }

    // Who took the pasteboard over does not tell.
    [[nodiscard]] Attempt textIsFetched() const {
        auto &pasteboard = platform::current().pasteboard;
        const bool isKnown = pasteboard.changeCount() == m_changeCount;
        return isKnown && pasteboard.fetchCount() == m_fetchCount ? Attempt::retry : Attempt::succeeded;
    }

    void giveUp(const char *reason) {
        FileLog::log(QLatin1StringView(reason) + QStringLiteral(", not pasting"));
        finish();
    }

    // Tells whether a paste would still give our text. A clipboard manager may have taken it over with the text in it.
    void ifTextIsThere(std::function<void(bool)> next) {
        auto &pasteboard = platform::current().pasteboard;
        if (pasteboard.changeCount() == m_changeCount) {
            next(true);
            return;
        }
        pasteboard.copyString([self = shared_from_this(), next = std::move(next)](const auto &string) {
            next(string == self->request().text);
        });
    }

    // A key poster copes with a modifier that stays down, only less well: so after the wait the keys go out anyway.
    static Attempt fingersAreUp() {
        return platform::current().keyPoster.userHoldsKeys() ? Attempt::retry : Attempt::succeeded;
    }

    Attempt focusIsThere() {
        const auto focused = AXText::focusedElement();
        if (focused && (*focused == request().target || isCopyOfTarget(*focused))) {
            return Attempt::succeeded;
        }
        if (!std::exchange(m_activatedAgain, true)) {
            activateTarget();
        }
        return Attempt::retry;
    }

    [[nodiscard]] bool isCopyOfTarget(const platform::AXUIElement &focused) const {
        const auto &known = request().lastSeen;
        if (!known || focused.pid() != known->pid || !AXText::isTextElement(focused)) {
            return false;
        }
        const auto candidate = snapshot(focused);
        return candidate && isRecreated(*known, *candidate);
    }

    static void postKeys() {
        auto &keys = platform::current().keyPoster;
        keys.postKey(platform::keyCode::a, platform::eventFlag::command);
        keys.postKey(platform::keyCode::v, platform::eventFlag::command);
    }

    // What the user copied meanwhile stays.
    void finish() {
        ifTextIsThere([self = shared_from_this()](bool isThere) {
            if (isThere) {
                self->restorePasteboard();
            }
            self->next();
        });
    }

    void next() {
        m_textIsOut = false;
        m_saved.clear(); // it may be large, or secret
        m_requests.pop_front();
        if (!m_requests.empty()) {
            begin();
        }
    }

    void restorePasteboard() const {
        auto &pasteboard = platform::current().pasteboard;
        pasteboard.clearContents();
        pasteboard.writeObjects(m_saved);
    }

    std::deque<PasteRequest> m_requests;
    platform::PasteboardItems m_saved;
    qint64 m_changeCount = 0;
    qint64 m_fetchCount = 0;
    bool m_activatedAgain = false;
    bool m_textIsOut = false;
};

} // namespace

void paste(PasteRequest request) {
    PasteQueue::current()->add(std::move(request));
}

bool isPasting() {
    return !PasteQueue::working().expired();
}

void abandonPastes() {
    if (const auto queue = PasteQueue::working().lock()) {
        queue->abandon();
    }
}

} // namespace quillory
