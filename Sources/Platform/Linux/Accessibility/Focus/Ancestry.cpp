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

// Chromium gives a page's address as URI, Firefox as DocURL, and each leaves the other empty.
void askAddress(Questions &questions, Ancestry::Level &level) {
    for (const char *key : {"URI", "DocURL"}) {
        questions.ask(calls::withText(level.element.ref, documentInterface, "GetAttributeValue", key),
                      [&level](const Reply &reply) {
                          auto url = reply.string();
                          if (url && !url->isEmpty()) {
                              level.url = std::move(url);
                          }
                      });
    }
}

void askLevel(Questions &questions, Ancestry::Level &level, std::optional<ElementRef> &parent, bool &isThere) {
    const auto &ref = level.element.ref;
    questions.ask(calls::parent(ref), [&parent](const Reply &reply) { parent = reply.referenceProperty(); });
    questions.ask(calls::states(ref),
                  [&level](const Reply &reply) { level.kind.states = reply.states().value_or(States()); });
    questions.ask(calls::attributes(ref),
                  [&level](const Reply &reply) { level.kind.attributes = reply.attributes().value_or(Attributes()); });
    questions.ask(calls::name(ref),
                  [&level](const Reply &reply) { level.name = reply.stringProperty().value_or(QString()); });
    questions.ask(calls::role(ref), [&level, &isThere](const Reply &reply) {
        const auto role = reply.number();
        isThere = role.has_value();
        level.kind.role = static_cast<Role>(role.value_or(static_cast<std::uint32_t>(Role::unknown)));
    });
}

bool askAddresses(Connection &connection, Ancestry &ancestry, Deadline deadline) {
    Questions questions;
    for (auto &level : ancestry.levels) {
        if (level.kind.role == Role::documentWeb) {
            level.url.reset();
            askAddress(questions, level);
        }
    }
    return questions.run(connection, deadline);
}
} // namespace

ParentAnswer askParent(Connection &connection, const ElementRef &ref, Deadline deadline) {
    const auto replies = connection.callAll({calls::parent(ref), calls::states(ref)}, deadline);
    const bool isRemoved = replies[1].states().value_or(States()).has(State::defunct);
    return {replies[0].isAnswered() && replies[1].isAnswered(),
            isRemoved ? std::nullopt : replies[0].referenceProperty()};
}

const Ancestry::Level *Ancestry::find(const ElementRef &ref) const {
    const auto found =
        std::find_if(levels.begin(), levels.end(), [&](const Level &level) { return level.element.ref == ref; });
    return found != levels.end() ? &*found : nullptr;
}

const Ancestry::Level *Ancestry::window() const {
    const auto top = std::find_if(levels.rbegin(), levels.rend(),
                                  [](const Level &level) { return level.kind.role != Role::application; });
    return top != levels.rend() ? &*top : nullptr;
}

bool Climb::isKnown(const ElementRef &ref) const {
    return ref == m_ancestry.element.ref || m_ancestry.find(ref) != nullptr;
}

Climb::Outcome Climb::proceed(Connection &connection, Deadline deadline) {
    if (!m_hasBegun) {
        auto first = askParent(connection, m_ancestry.element.ref, deadline);
        if (!first.isAnswered) {
            return Outcome::outOfTime;
        }
        m_hasBegun = true;
        m_next = std::move(first.parent);
    }
    while (m_next && m_ancestry.levels.size() < maxLevels && !isKnown(*m_next)) {
        const auto outcome = climbLevel(connection, std::min(deadline, Clock::now() + levelTime));
        if (outcome != Outcome::arrived) {
            return outcome;
        }
    }
    m_next.reset();
    return askAddresses(connection, m_ancestry, deadline) ? Outcome::arrived : Outcome::outOfTime;
}

Climb::Outcome Climb::climbLevel(Connection &connection, Deadline deadline) {
    Ancestry::Level level{connection.handles({*m_next}, deadline).front(), {}, {}, {}};
    std::optional<ElementRef> next;
    bool isThere = false;
    Questions questions;
    askLevel(questions, level, next, isThere);
    if (!questions.run(connection, deadline)) {
        return Outcome::outOfTime;
    }
    if (!isThere) {
        return Outcome::brokenOff;
    }
    m_next = level.kind.role == Role::application ? std::nullopt : std::move(next);
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
    std::vector<std::optional<ElementRef>> parents(levels.size() + 1);
    // Not std::vector<bool>, whose elements cannot be referred to.
    std::vector<char> answered(levels.size());
    Questions questions;
    bool isRemoved = false;
    questions.ask(calls::parent(ancestry.element.ref),
                  [&](const Reply &reply) { parents.front() = reply.referenceProperty(); });
    questions.ask(calls::states(ancestry.element.ref),
                  [&](const Reply &reply) { isRemoved = reply.states().value_or(States()).has(State::defunct); });
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto &ref = levels[i].element.ref;
        questions.ask(calls::parent(ref), [&, i](const Reply &reply) { parents[i + 1] = reply.referenceProperty(); });
        questions.ask(calls::states(ref), [&, i](const Reply &reply) {
            answered[i] = reply.states() ? 1 : 0;
            levels[i].kind.states = reply.states().value_or(States());
        });
        questions.ask(calls::name(ref),
                      [&, i](const Reply &reply) { levels[i].name = reply.stringProperty().value_or(QString()); });
        if (levels[i].kind.role == Role::documentWeb) {
            levels[i].url.reset();
            askAddress(questions, levels[i]);
        }
    }
    questions.run(connection, deadline);
    if (isRemoved) {
        return false;
    }
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (answered[i] == 0 || parents[i] != levels[i].element.ref) {
            return false;
        }
    }
    ancestry.takenAt = startedAt;
    return true;
}

} // namespace platform::desktop::atspi
