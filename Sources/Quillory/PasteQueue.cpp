// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/PasteQueue.h"

#include "Platform/Platform.h"
#include "Quillory/AXText.h"
#include "Quillory/ActionSequence.h"
#include "Quillory/FileLog.h"

#include <deque>
#include <memory>

namespace quillory {

namespace {

using namespace std::chrono_literals;

// Long enough for an application to come to the front, and for a slow one to have fetched the pasteboard.
constexpr auto pauseBeforeKeys = 250ms;
constexpr auto pauseBeforeRestore = 700ms;
// At 20 ms each: two seconds for the user to let go of the keys, one for the focus to come back.
constexpr int fingerRetries = 100;
constexpr int focusRetries = 50;
constexpr int saveAttempts = 3;

// Lives while it has a request to carry out: the main queue and the pasteboard hold it between the steps.
class PasteQueue : public std::enable_shared_from_this<PasteQueue> {
  public:
    static std::shared_ptr<PasteQueue> current() {
        static std::weak_ptr<PasteQueue> working;
        auto queue = working.lock();
        if (!queue) {
            queue = std::make_shared<PasteQueue>();
            working = queue;
        }
        return queue;
    }

    void add(PasteRequest request) {
        m_requests.push_back(std::move(request));
        if (m_requests.size() == 1) {
            begin();
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
            self->m_saved = std::move(items);
            self->putText();
            self->typeAndRestore();
        });
    }

    void activateTarget() const { platform::current().workspace.activate(request().target.pid()); }

    void putText() {
        auto &pasteboard = platform::current().pasteboard;
        pasteboard.clearContents();
        pasteboard.setString(request().text);
        m_changeCount = pasteboard.changeCount();
    }

    void typeAndRestore() {
        const auto self = shared_from_this();
        std::vector<Action> actions;
        actions.push_back({[] { return fingersAreUp(); }, pauseBeforeKeys, fingerRetries, Attempt::succeeded});
        actions.push_back({[self] { return self->focusIsThere(); }, 0ms, focusRetries, Attempt::failed});
        actions.push_back({[] { return postKeys(); }, 0ms});
        actions.push_back({[] { return Attempt::succeeded; }, pauseBeforeRestore});
        runInOrder(std::move(actions), [self](bool typed) { self->finish(typed); });
    }

    // A key poster copes with a modifier that stays down, only less well: so after the wait the keys go out anyway.
    static Attempt fingersAreUp() {
        return platform::current().keyPoster.userHoldsKeys() ? Attempt::retry : Attempt::succeeded;
    }

    Attempt focusIsThere() {
        const auto focused = AXText::focusedElement();
        if (!focused || *focused == request().target || isCopyOfTarget(*focused)) {
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

    static Attempt postKeys() {
        auto &keys = platform::current().keyPoster;
        keys.postKey(platform::keyCode::a, platform::eventFlag::command);
        keys.postKey(platform::keyCode::v, platform::eventFlag::command);
        return Attempt::succeeded;
    }

    void finish(bool typed) {
        if (!typed) {
            FileLog::log(QStringLiteral("focus left the field, not pasting"));
        }
        restorePasteboard();
        m_requests.pop_front();
        if (!m_requests.empty()) {
            begin();
        }
    }

    void restorePasteboard() {
        auto &pasteboard = platform::current().pasteboard;
        if (pasteboard.changeCount() == m_changeCount) {
            pasteboard.clearContents();
            pasteboard.writeObjects(m_saved);
        }
        m_saved.clear(); // it may be large, or secret
    }

    std::deque<PasteRequest> m_requests;
    std::vector<platform::PasteboardItem> m_saved;
    qint64 m_changeCount = 0;
    bool m_activatedAgain = false;
};

} // namespace

void paste(PasteRequest request) {
    PasteQueue::current()->add(std::move(request));
}

} // namespace quillory
