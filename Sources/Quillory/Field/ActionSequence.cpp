// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/ActionSequence.h"

#include "Platform/Platform.h"

#include <memory>
#include <utility>

namespace quillory {

namespace {

class Sequence : public std::enable_shared_from_this<Sequence> {
  public:
    Sequence(std::vector<Action> actions, std::function<void(bool)> done)
        : m_actions(std::move(actions)), m_done(std::move(done)) {}

    void run() {
        while (m_next < m_actions.size()) {
            if (const auto pause = std::exchange(m_actions[m_next].pause, {}); pause.count() > 0) {
                continueAfter(pause);
                return;
            }
            switch (attempt(m_actions[m_next])) {
            case Attempt::succeeded:
                ++m_next;
                break;
            case Attempt::retry:
                continueAfter(retryInterval);
                return;
            case Attempt::failed:
                m_done(false);
                return;
            }
        }
        m_done(true);
    }

  private:
    static Attempt attempt(Action &action) {
        const Attempt outcome = action.attempt();
        return outcome == Attempt::retry && action.retries-- == 0 ? action.whenTired : outcome;
    }

    // The queue holds the sequence between its steps, and nothing else does.
    void continueAfter(std::chrono::milliseconds delay) {
        platform::current().mainQueue.postAfter(delay, [self = shared_from_this()] { self->run(); });
    }

    std::vector<Action> m_actions;
    std::function<void(bool)> m_done;
    std::size_t m_next = 0;
};

} // namespace

void runInOrder(std::vector<Action> actions, std::function<void(bool)> done) {
    std::make_shared<Sequence>(std::move(actions), std::move(done))->run();
}

} // namespace quillory
