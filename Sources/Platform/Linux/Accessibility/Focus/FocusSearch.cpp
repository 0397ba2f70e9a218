// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Focus/FocusTracker.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
// For each step of its own: what a hung application uses up is not taken from the others.
constexpr auto stepTime = 120ms;
constexpr auto searchTime = 200ms;
// While nothing has the focus; while one of our own windows has it; while what has it says so whenever it is asked.
constexpr std::chrono::milliseconds searchPause = 5s;
constexpr std::chrono::milliseconds ownPause = 1s;
constexpr std::chrono::milliseconds longestPause = 60s;
constexpr int searchShare = 100;
// Enough for the window of any program that cannot search itself; browsers can.
constexpr std::size_t searchedElements = 3000;
constexpr std::size_t maxApplications = 500;
constexpr std::size_t maxWindows = 200;

Deadline step() {
    return Clock::now() + stepTime;
}
} // namespace

// Finds the active window and its focused element by asking, for all that no event told of: what had the focus before
// this program started, focus that a script set, events that were lost.
void FocusTracker::look() {
    const auto begin = Clock::now();
    const auto isConfirmed = [&] { return m_focus.element && m_focus.confirmedAt >= begin; };
    refresh(m_focus.snapshot != nullptr ? m_focus.snapshot->wanted : TextWanted::nothing);
    if (isConfirmed() && m_focus.snapshot->kind.states.has(State::editable)) {
        m_lookAt = begin + longestPause;
        return;
    }
    const bool isOwn = m_focus.element && m_focus.element->pid == m_ownPid;
    const auto searched = lookInActiveWindow();
    const auto longest = isOwn ? ownPause : isConfirmed() ? longestPause : searchPause;
    m_lookPause = std::min<std::chrono::milliseconds>(2 * m_lookPause, longest);
    // A search goes through all of a long page; it must not keep its browser busy.
    m_lookAt = Clock::now() + std::max<Clock::duration>(m_lookPause, searchShare * searched);
}

// How long its application was kept busy with the search.
Clock::duration FocusTracker::lookInActiveWindow() {
    const auto window = activeWindow();
    if (!window) {
        return {};
    }
    wake(*window);
    m_windows[window->bus] = *window;
    const auto begin = Clock::now();
    const auto focused = focusedBelow(*window, begin + searchTime);
    const auto end = Clock::now();
    if (focused && m_candidate.ref != *focused) {
        adopt(*focused);
    }
    return m_connection.isSilent(window->bus) ? Clock::duration() : end - begin;
}

// Chromium shows two elements of a window until somebody asks its frame for its attributes; then it builds them all.
void FocusTracker::wake(const ElementRef &window) {
    if (m_woken.insert(window).second) {
        m_connection.send(calls::attributes(window));
    }
}

std::optional<ElementRef> FocusTracker::activeWindow() {
    auto windows = otherWindows();
    std::vector<Call> questions;
    questions.reserve(windows.size());
    for (const auto &window : windows) {
        questions.push_back(calls::states(window));
    }
    const auto replies = m_connection.callAll(questions, step());
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const auto states = replies[i].states();
        if (states && isActiveWindow(*states)) {
            return windows[i];
        }
    }
    return std::nullopt;
}

// The windows of all applications but our own, which must not be asked: it would wait for itself.
std::vector<ElementRef> FocusTracker::otherWindows() {
    auto roots = m_connection.call(calls::children({registryName, rootPath}), step()).references(maxApplications);
    std::vector<Call> questions;
    questions.reserve(roots ? roots->size() : 0);
    for (const auto &root : m_connection.handles(roots.value_or(std::vector<ElementRef>()), step())) {
        if (root.pid != 0 && root.pid != m_ownPid) {
            questions.push_back(calls::children(root.ref));
        }
    }
    std::vector<ElementRef> windows;
    for (const auto &reply : m_connection.callAll(questions, step())) {
        auto found = reply.references(maxWindows).value_or(std::vector<ElementRef>());
        windows.insert(windows.end(), found.begin(), found.end());
    }
    return windows;
}

std::optional<ElementRef> FocusTracker::focusedBelow(const ElementRef &window, Deadline deadline) {
    const auto reply = m_connection.call(calls::focusedMatches(window), deadline);
    const auto matches = reply.references(searchedElements);
    if (matches) {
        // The innermost comes last.
        return matches->empty() ? std::nullopt : std::optional(matches->back());
    }
    return reply.isAnswered() ? searchBelow(window, deadline) : std::nullopt;
}

// A search level by level, for toolkits that have none of their own.
std::optional<ElementRef> FocusTracker::searchBelow(const ElementRef &window, Deadline deadline) {
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
            const auto states = replies[2 * i].states().value_or(States());
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
