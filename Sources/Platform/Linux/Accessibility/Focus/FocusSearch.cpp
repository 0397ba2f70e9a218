// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Focus/FocusSearch.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// For each step separately: the time that a hung application uses up is not taken from the others.
constexpr auto stepTime = 120ms;
constexpr auto searchTime = 200ms;
// Enough for the window of any program that cannot search itself; browsers can.
constexpr std::size_t searchedElements = 3000;
constexpr std::size_t maxApplications = 500;
constexpr std::size_t maxWindows = 200;

Deadline step() {
    return Clock::now() + stepTime;
}

std::vector<Call> statesOf(const std::vector<ElementRef> &elements) {
    std::vector<Call> questions;
    std::ranges::transform(elements, std::back_inserter(questions), calls::states);
    return questions;
}
} // namespace

std::optional<ElementRef> activeAmong(Connection &connection, const std::vector<ElementRef> &windows,
                                      Deadline deadline) {
    const auto replies = connection.callAll(statesOf(windows), deadline);
    const auto active = std::ranges::find_if(
        replies, [](const Reply &reply) { return isActiveWindow(reply.as<States>().value_or(States())); });
    return active != replies.end() ? std::optional(windows[static_cast<std::size_t>(active - replies.begin())])
                                   : std::nullopt;
}

void FocusSearch::wake(const ElementRef &window) {
    if (m_woken.insert(window).second) {
        m_connection.send(calls::attributes(window));
    }
}

void FocusSearch::forget(const std::string &bus) {
    std::erase_if(m_woken, [&](const ElementRef &window) { return window.bus == bus; });
}

std::optional<ElementRef> FocusSearch::activeWindow() {
    return activeAmong(m_connection, otherWindows(), step());
}

// The windows of all applications but our own, which must not be asked: it would wait for itself.
std::vector<ElementRef> FocusSearch::otherWindows() {
    auto roots = m_connection.call(calls::applications(), step()).references(maxApplications);
    std::vector<Call> questions;
    for (const auto &root : m_connection.handles(std::move(roots).value_or(std::vector<ElementRef>()), step())) {
        if (root.pid != 0 && root.pid != m_ownPid) {
            questions.push_back(calls::children(root.ref));
        }
    }
    std::vector<ElementRef> windows;
    for (const auto &reply : m_connection.callAll(questions, step())) {
        std::ranges::move(reply.references(maxWindows).value_or(std::vector<ElementRef>()),
                          std::back_inserter(windows));
    }
    return windows;
}

std::optional<ElementRef> FocusSearch::focusedBelow(const ElementRef &window) {
    const auto deadline = Clock::now() + searchTime;
    const auto reply =
        m_connection.call(calls::matches(window, {.states = 1 << static_cast<int>(State::focused)}), deadline);
    const auto matches = reply.references(searchedElements);
    if (matches) {
        // The innermost comes last.
        return matches->empty() ? std::nullopt : std::optional(matches->back());
    }
    return reply.isAnswered() ? searchBelow(window, deadline) : std::nullopt;
}

// Searches level by level, for toolkits that have no search of their own.
std::optional<ElementRef> FocusSearch::searchBelow(const ElementRef &window, Deadline deadline) {
    std::vector<ElementRef> level{window};
    std::set<ElementRef> seen;
    while (!level.empty() && seen.size() < searchedElements && Clock::now() < deadline) {
        std::vector<Call> questions;
        for (const auto &ref : level) {
            seen.insert(ref);
            questions.push_back(calls::states(ref));
            questions.push_back(calls::children(ref));
        }
        const auto replies = m_connection.callAll(questions, deadline);
        std::vector<ElementRef> below;
        for (std::size_t i = 0; i < level.size(); ++i) {
            const auto states = replies[2 * i].as<States>().value_or(States());
            if (states.has(State::focused) && level[i] != window) {
                return level[i];
            }
            if (!states.has(State::showing) && level[i] != window) {
                continue;
            }
            for (auto &child : replies[2 * i + 1].references(searchedElements).value_or(std::vector<ElementRef>())) {
                if (!seen.contains(child) && seen.size() + below.size() < searchedElements) {
                    below.push_back(std::move(child));
                }
            }
        }
        level = std::move(below);
    }
    return std::nullopt;
}

} // namespace platform::desktop::atspi
