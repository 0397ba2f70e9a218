// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/Connection.h"

namespace platform::desktop::atspi {

/// Questions that are asked together in one round trip, each with what to do with its answer.
class Questions {
  public:
    using Taker = std::function<void(const Reply &)>;

    void ask(Call call, Taker taker) {
        m_calls.push_back(std::move(call));
        m_takers.push_back(std::move(taker));
    }
    [[nodiscard]] bool isEmpty() const { return m_calls.empty(); }
    /// Asks, waits, and hands every answer (an empty one where none came) to its taker; then starts anew. Whether all
    /// answers came.
    bool run(Connection &connection, Deadline deadline) {
        const auto calls = std::exchange(m_calls, {});
        const auto takers = std::exchange(m_takers, {});
        const auto replies = connection.callAll(calls, deadline);
        bool isWhole = true;
        for (std::size_t i = 0; i < replies.size(); ++i) {
            takers[i](replies[i]);
            isWhole = isWhole && replies[i].isAnswered();
        }
        return isWhole;
    }

  private:
    std::vector<Call> m_calls;
    std::vector<Taker> m_takers;
};

} // namespace platform::desktop::atspi
