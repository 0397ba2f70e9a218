// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Focus/Ancestry.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
// The program looks at thirty ancestors; real pages nest up to about forty.
constexpr std::size_t maxLevels = 64;
// An application that takes longer for one level is left alone until it answers again.
constexpr auto levelTime = std::chrono::milliseconds(120);

// What may change while the element stays.
void askLevel(Questions &questions, ElementReading &level, std::optional<ElementRef> &parent) {
    const auto &ref = level.element.ref;
    questions.ask(calls::parent(ref), [&parent](const Reply &reply) { parent = reply.reference(); });
    questions.ask(calls::states(ref), [&level](const Reply &reply) {
        const auto states = reply.as<States>();
        level.isAnswered = states.has_value();
        level.kind.states = states.value_or(States());
    });
    questions.fetch(calls::name(ref), level.name);
}

bool isRemoved(const ElementReading &reading) {
    return reading.kind.states.has(State::defunct);
}

void askAddresses(Questions &questions, std::vector<ElementReading> &levels) {
    for (auto &level : levels) {
        if (level.kind.role == Role::documentWeb) {
            askAddress(questions, level);
        }
    }
}
} // namespace

void askAddress(Questions &questions, ElementReading &page) {
    page.url.reset();
    // Chromium gives it under the first name, Firefox under the second; each leaves the other empty.
    for (const char *key : {"URI", "DocURL"}) {
        questions.ask(calls::documentAttribute(page.element.ref, key), [&page](const Reply &reply) {
            auto url = reply.as<QString>();
            if (url && !url->isEmpty()) {
                page.url = std::move(url);
            }
        });
    }
}

const ElementReading *Ancestry::find(const ElementRef &ref) const {
    const auto found = std::ranges::find(
        levels, ref, [](const auto &level) -> auto & { return level.element.ref; });
    return found != levels.end() ? &*found : nullptr;
}

const ElementReading *Ancestry::above(const ElementRef &ref) const {
    const auto *level = find(ref);
    const auto next = level == nullptr ? 0 : static_cast<std::size_t>(level - levels.data()) + 1;
    return next < levels.size() ? &levels[next] : nullptr;
}

const ElementReading *Ancestry::window() const {
    const auto top = std::find_if(levels.rbegin(), levels.rend(),
                                  [](const auto &level) { return level.kind.role != Role::application; });
    return top != levels.rend() ? &*top : nullptr;
}

bool Climb::isKnown(const ElementRef &ref) const {
    return ref == m_ancestry.element.ref || m_ancestry.find(ref) != nullptr;
}

Climb::Outcome Climb::proceed(Connection &connection, Deadline deadline) {
    Questions questions;
    if (!m_hasBegun) {
        ElementReading start{.element = m_ancestry.element};
        askLevel(questions, start, m_next);
        if (!questions.run(connection, deadline)) {
            return Outcome::outOfTime;
        }
        m_hasBegun = true;
        // Firefox still names the parent of an element that it has removed.
        m_next = isRemoved(start) ? std::nullopt : m_next;
    }
    while (m_next && m_ancestry.levels.size() < maxLevels && !isKnown(*m_next)) {
        const auto outcome = climbLevel(connection, std::min(deadline, Clock::now() + levelTime));
        if (outcome != Outcome::arrived) {
            return outcome;
        }
    }
    m_next.reset();
    askAddresses(questions, m_ancestry.levels);
    return questions.run(connection, deadline) ? Outcome::arrived : Outcome::outOfTime;
}

Climb::Outcome Climb::climbLevel(Connection &connection, Deadline deadline) {
    ElementReading level{.element = connection.handles({*m_next}, deadline).front()};
    std::optional<ElementRef> next;
    std::optional<Role> role;
    Questions questions;
    askLevel(questions, level, next);
    questions.fetch(calls::attributes(level.element.ref), level.kind.attributes);
    questions.fetch(calls::role(level.element.ref), role);
    if (!questions.run(connection, deadline)) {
        return Outcome::outOfTime;
    }
    if (!role) {
        return Outcome::brokenOff;
    }
    level.kind.role = *role;
    m_next = role != Role::application ? std::move(next) : std::nullopt;
    m_ancestry.levels.push_back(std::move(level));
    return Outcome::arrived;
}

std::optional<Ancestry> readAncestry(Connection &connection, const Handle &element, Deadline deadline) {
    Climb climb(element);
    const bool hasArrived = climb.proceed(connection, deadline) == Climb::Outcome::arrived;
    return hasArrived ? std::optional(climb.ancestry()) : std::nullopt;
}

bool refreshAncestry(Connection &connection, Ancestry &ancestry, Deadline deadline) {
    const auto startedAt = Clock::now();
    auto &levels = ancestry.levels;
    ElementReading start{.element = ancestry.element};
    std::vector<std::optional<ElementRef>> parents(levels.size() + 1);
    Questions questions;
    askLevel(questions, start, parents.front());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        askLevel(questions, levels[i], parents[i + 1]);
    }
    askAddresses(questions, levels);
    questions.run(connection, deadline);
    if (isRemoved(start)) {
        return false;
    }
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (!levels[i].isAnswered || parents[i] != levels[i].element.ref) {
            return false;
        }
    }
    ancestry.takenAt = startedAt;
    return true;
}

} // namespace platform::desktop::atspi
