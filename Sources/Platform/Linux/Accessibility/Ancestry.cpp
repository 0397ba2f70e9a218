// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/Ancestry.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
// The program looks at thirty ancestors; real pages nest up to about forty.
constexpr std::size_t maxLevels = 64;

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

void askLevel(Questions &questions, Ancestry::Level &level, std::optional<ElementRef> &parent, bool &isAnswered) {
    const auto &ref = level.element.ref;
    questions.ask(calls::parent(ref), [&parent](const Reply &reply) { parent = reply.referenceProperty(); });
    questions.ask(calls::states(ref),
                  [&level](const Reply &reply) { level.kind.states = reply.states().value_or(States()); });
    questions.ask(calls::attributes(ref),
                  [&level](const Reply &reply) { level.kind.attributes = reply.attributes().value_or(Attributes()); });
    questions.ask(calls::name(ref),
                  [&level](const Reply &reply) { level.name = reply.stringProperty().value_or(QString()); });
    questions.ask(calls::role(ref), [&level, &isAnswered](const Reply &reply) {
        const auto role = reply.number();
        isAnswered = role.has_value();
        level.kind.role = static_cast<Role>(role.value_or(static_cast<std::uint32_t>(Role::unknown)));
    });
}

void askAddresses(Connection &connection, Ancestry &ancestry, Deadline deadline) {
    Questions questions;
    for (auto &level : ancestry.levels) {
        if (level.kind.role == Role::documentWeb) {
            level.url.reset();
            askAddress(questions, level);
        }
    }
    questions.run(connection, deadline);
}

bool isKnown(const Ancestry &ancestry, const ElementRef &ref) {
    return ref == ancestry.element.ref || ancestry.find(ref) != nullptr;
}
} // namespace

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

std::optional<Ancestry> readAncestry(Connection &connection, const Handle &element, Deadline deadline) {
    Ancestry ancestry{element, Clock::now(), {}};
    const auto first = connection.call(calls::parent(element.ref), deadline);
    if (!first.isAnswered()) {
        return std::nullopt;
    }
    auto next = first.referenceProperty();
    while (next && ancestry.levels.size() < maxLevels && !isKnown(ancestry, *next)) {
        Ancestry::Level level{connection.handles({*next}, deadline).front(), {}, {}, {}};
        next.reset();
        bool isAnswered = false;
        Questions questions;
        askLevel(questions, level, next, isAnswered);
        questions.run(connection, deadline);
        if (!isAnswered) {
            return std::nullopt;
        }
        const bool isTop = level.kind.role == Role::application;
        ancestry.levels.push_back(std::move(level));
        if (isTop) {
            break;
        }
    }
    askAddresses(connection, ancestry, deadline);
    return ancestry;
}

bool refreshAncestry(Connection &connection, Ancestry &ancestry, Deadline deadline) {
    const auto startedAt = Clock::now();
    auto &levels = ancestry.levels;
    std::vector<std::optional<ElementRef>> parents(levels.size() + 1);
    // Not std::vector<bool>, whose elements cannot be referred to.
    std::vector<char> answered(levels.size());
    Questions questions;
    questions.ask(calls::parent(ancestry.element.ref),
                  [&](const Reply &reply) { parents.front() = reply.referenceProperty(); });
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
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (answered[i] == 0 || parents[i] != levels[i].element.ref) {
            return false;
        }
    }
    ancestry.takenAt = startedAt;
    return true;
}

} // namespace platform::desktop::atspi
