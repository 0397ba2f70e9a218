// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/FocusTracker.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto lookTime = 200ms;
constexpr auto longestPause = 5000ms;
constexpr auto quietPause = 2000ms;
// Enough for the window of any program that cannot search itself; browsers can.
constexpr std::size_t searchedElements = 3000;
constexpr std::size_t maxApplications = 500;
constexpr std::size_t maxWindows = 200;

bool isActive(const States &states) {
    return states.has(State::active) && !states.has(State::iconified);
}
} // namespace

// Finds the active window and its focused element by asking, for all that no event told of: what had the focus before
// this program started, focus that a script set, events that were lost.
void FocusTracker::look() {
    m_lookAt = Clock::now() + m_lookPause;
    m_lookPause = std::min<std::chrono::milliseconds>(2 * m_lookPause, longestPause);
    const bool isOwn = m_focus.element && m_focus.element->pid == m_ownPid;
    if (m_focus.element && !isOwn && m_focus.snapshot->kind.states.has(State::editable)) {
        m_lookAt = Clock::now() + longestPause;
        return;
    }
    const auto deadline = Clock::now() + lookTime;
    const auto window = activeWindow(deadline);
    if (!window) {
        return;
    }
    wake(*window);
    m_windows[window->bus] = *window;
    const auto focused = focusedBelow(*window, deadline);
    if (focused && (!m_focus.element || m_focus.element->ref != *focused)) {
        adopt(*focused);
    }
    if (m_focus.element) {
        m_lookAt = Clock::now() + quietPause;
    }
}

// Chromium shows two elements of a window until somebody asks its frame for its attributes; then it builds them all.
void FocusTracker::wake(const ElementRef &window) {
    if (m_woken.insert(window).second) {
        m_connection.send(calls::attributes(window));
    }
}

std::optional<ElementRef> FocusTracker::activeWindow(Deadline deadline) {
    auto windows = otherWindows(deadline);
    std::vector<Call> questions;
    for (const auto &window : windows) {
        questions.push_back(calls::states(window));
    }
    const auto replies = m_connection.callAll(questions, deadline);
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const auto states = replies[i].states();
        if (states && isActive(*states)) {
            return windows[i];
        }
    }
    return std::nullopt;
}

// The windows of all applications but our own, which must not be asked: it would wait for itself.
std::vector<ElementRef> FocusTracker::otherWindows(Deadline deadline) {
    auto roots = m_connection.call(calls::children({registryName, rootPath}), deadline).references(maxApplications);
    std::vector<Call> questions;
    for (const auto &root : m_connection.handles(roots.value_or(std::vector<ElementRef>()), deadline)) {
        if (root.pid != 0 && root.pid != m_ownPid) {
            questions.push_back(calls::children(root.ref));
        }
    }
    std::vector<ElementRef> windows;
    for (const auto &reply : m_connection.callAll(questions, deadline)) {
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
