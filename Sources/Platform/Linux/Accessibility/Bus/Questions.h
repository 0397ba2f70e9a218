// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Connection.h"

#include <algorithm>

namespace platform::desktop::atspi {

/// How a long read asks: on which connection and until when, and what lets others have their turn in between.
struct Asking {
    Connection &connection;
    Deadline deadline;
    std::function<void()> giveWay = [] {};
    /// How many questions are asked in one go: as many as keep the application busy for a few milliseconds.
    mutable std::size_t inOnePart = 32;

    void adaptTo(Clock::duration lastPart) const {
        if (lastPart > std::chrono::milliseconds(8)) {
            inOnePart = std::max<std::size_t>(inOnePart / 2, 4);
        } else if (lastPart < std::chrono::milliseconds(4)) {
            inOnePart = std::min<std::size_t>(inOnePart * 2, 200);
        }
    }
};

/// Questions that are asked together in one round trip, each with a handler or a place for its answer.
class Questions {
  public:
    using Taker = std::function<void(const Reply &)>;

    void ask(Call call, Taker taker) {
        m_calls.push_back(std::move(call));
        m_takers.push_back(std::move(taker));
    }
    /// Puts the answer there: a default value, or nothing in an optional, where none of the type came.
    template <class T> void fetch(Call call, T &place) {
        ask(std::move(call), [&place](const Reply &reply) { place = reply.as<T>().value_or(T()); });
    }
    template <class T> void fetch(Call call, std::optional<T> &place) {
        ask(std::move(call), [&place](const Reply &reply) { place = reply.as<T>(); });
    }
    [[nodiscard]] bool isEmpty() const { return m_calls.empty(); }
    /// Asks, waits, and hands every answer (an empty one where none came) to its handler; then starts anew. True when
    /// all answers came.
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

    /// The same in parts: another question to the same application waits for one part at most.
    bool run(const Asking &asking) {
        auto calls = std::exchange(m_calls, {});
        auto takers = std::exchange(m_takers, {});
        bool isWhole = true;
        for (std::size_t i = 0; i < calls.size();) {
            const auto begin = Clock::now();
            const auto end = std::min(i + asking.inOnePart, calls.size());
            const bool isFullPart = end - i == asking.inOnePart;
            for (; i < end; ++i) {
                ask(std::move(calls[i]), std::move(takers[i]));
            }
            isWhole = run(asking.connection, asking.deadline) && isWhole;
            if (isFullPart) {
                asking.adaptTo(Clock::now() - begin);
            }
            asking.giveWay();
        }
        return isWhole;
    }

  private:
    std::vector<Call> m_calls;
    std::vector<Taker> m_takers;
};

} // namespace platform::desktop::atspi
