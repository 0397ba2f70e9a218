// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/ActionSequence.h"

#include <utility>

namespace quillory {

namespace {
Attempt attempt(Action &action) {
    const Attempt outcome = action.attempt();
    return outcome == Attempt::retry && action.retries-- == 0 ? action.afterLastRetry : outcome;
}
} // namespace

void ActionSequence::run(std::vector<Action> actions, std::function<void(bool)> done) {
    m_actions = std::move(actions);
    m_next = 0;
    m_done = std::move(done);
    proceed();
}

void ActionSequence::proceed() {
    while (m_next < m_actions.size()) {
        Action &action = m_actions[m_next];
        if (const auto pause = std::exchange(action.pause, {}); pause.count() > 0) {
            continueAfter(pause);
            return;
        }
        switch (attempt(action)) {
        case Attempt::succeeded:
            ++m_next;
            break;
        case Attempt::retry:
            continueAfter(retryInterval);
            return;
        case Attempt::failed:
            end(false);
            return;
        }
    }
    end(true);
}

void ActionSequence::continueAfter(std::chrono::milliseconds delay) {
    m_queue.postAfter(delay, m_life.whileAlive([this] { proceed(); }));
}

// The callback may start the next actions, which replace these.
void ActionSequence::end(bool succeeded) {
    const auto done = std::exchange(m_done, {});
    done(succeeded);
}

} // namespace quillory
