// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/ElementQueries.h"

#include "Platform/Linux/Accessibility/Text/FlatText.h"

#include <algorithm>

namespace platform::desktop::atspi::queries {

namespace {
using namespace std::chrono_literals;
constexpr auto questionTime = 120ms;
constexpr std::size_t maxChildren = 10'000;
constexpr std::size_t maxApplications = 500;
// A value that is asked for in so many words is copied up to this length, in characters.
constexpr int longestText = 1'000'000;

Deadline soon() {
    return Clock::now() + questionTime;
}

Reply ask(Session &session, Call call) {
    return session.connection()->call(std::move(call), soon());
}
} // namespace

std::optional<ElementReading> read(Session &session, const Handle &element, TextWanted wanted) {
    const auto &focused = session.focus()->focus().element;
    if (focused && focused->ref == element.ref) {
        const auto askedAt = Clock::now();
        const auto reading = session.focus()->refresh(wanted).reading;
        if (reading != nullptr && reading->takenAt >= askedAt && reading->covers(wanted)) {
            return *reading;
        }
    }
    FieldReader reader(element);
    reader.setTextLimit(longestText);
    auto reading = reader.read(*session.connection(), wanted, {}, soon());
    return reading.isAnswered && !reading.isGone ? std::optional(std::move(reading)) : std::nullopt;
}

std::optional<Ancestry> ancestry(Session &session, const Handle &element) {
    return readAncestry(*session.connection(), element, soon());
}

std::optional<std::vector<Handle>> children(Session &session, const Handle &element) {
    auto found = ask(session, calls::children(element.ref)).references(maxChildren);
    return found ? std::optional(session.connection()->handles(std::move(*found), soon())) : std::nullopt;
}

std::optional<QString> address(Session &session, const Handle &element) {
    ElementReading page{.element = element};
    Questions questions;
    askAddress(questions, page);
    questions.run(*session.connection(), soon());
    return page.url;
}

std::optional<Handle> application(Session &session, qint32 pid) {
    auto listed = ask(session, calls::applications()).references(maxApplications);
    const auto roots = session.connection()->handles(std::move(listed).value_or(std::vector<ElementRef>()), soon());
    const auto found = std::ranges::find(roots, pid, &Handle::pid);
    return found != roots.end() ? std::optional(*found) : std::nullopt;
}

std::optional<Handle> focusedWindow(Session &session, qint32 pid) {
    const auto root = application(session, pid);
    const auto windows = root ? ask(session, calls::children(root->ref)).references(maxChildren) : std::nullopt;
    if (!windows) {
        return std::nullopt;
    }
    if (auto active = activeAmong(*session.connection(), *windows, soon())) {
        return Handle{*std::move(active), pid};
    }
    const auto remembered = session.focus()->lastWindowOf(root->ref.bus);
    const bool isThere = std::ranges::find(*windows, remembered) != windows->end();
    return isThere ? std::optional(Handle{remembered, pid}) : std::nullopt;
}

std::optional<AXRange> selectedRange(Session &session, const Handle &element) {
    std::optional<int> caret;
    std::optional<std::tuple<int, int>> selection;
    std::optional<QString> text;
    Questions questions;
    questions.fetch(calls::caretOffset(element.ref), caret);
    questions.ask(calls::selection(element.ref, 0), [&](const Reply &reply) { selection = reply.as<int, int>(); });
    questions.fetch(calls::text(element.ref), text);
    questions.run(*session.connection(), soon());
    if (!caret || !text) {
        return std::nullopt;
    }
    const auto [begin, end] = selection.value_or(std::tuple(-1, -1));
    const bool isSelected = begin >= 0 && end > begin;
    const auto from = utf16Offset(*text, isSelected ? begin : *caret);
    const auto to = isSelected ? utf16Offset(*text, end) : from;
    return AXRange{from, to - from};
}

bool setText(Session &session, const Handle &element, const QString &text) {
    const auto call = calls::method(element.ref, editableTextInterface, "SetTextContents", text.toStdString());
    return ask(session, call).as<bool>().value_or(false);
}

bool setSelectedRange(Session &session, const Handle &element, AXRange range) {
    const auto text = ask(session, calls::text(element.ref)).as<QString>();
    if (!text) {
        return false;
    }
    const auto from = static_cast<int>(codePointOffset(*text, range.location));
    const auto to = static_cast<int>(codePointOffset(*text, range.location + range.length));
    const auto succeeds = [&](const char *member, auto... numbers) {
        return ask(session, calls::method(element.ref, textInterface, member, numbers...))
            .template as<bool>()
            .value_or(false);
    };
    if (from == to) {
        return succeeds("SetCaretOffset", from);
    }
    // A selection can only be changed once there is one.
    return succeeds("SetSelection", 0, from, to) || succeeds("AddSelection", from, to);
}

} // namespace platform::desktop::atspi::queries
