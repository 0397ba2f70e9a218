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
// A value that somebody insists on is copied up to this length, in characters.
constexpr int longestText = 1'000'000;

Deadline soon() {
    return Clock::now() + questionTime;
}

std::optional<std::vector<Handle>> windowsOf(Session &session, const Handle &application) {
    const auto reply = session.connection()->call(calls::children(application.ref), soon());
    auto windows = reply.references(maxChildren);
    return windows ? std::optional(session.connection()->handles(std::move(*windows), soon())) : std::nullopt;
}
} // namespace

std::optional<FieldSnapshot> read(Session &session, const Handle &element, TextWanted wanted) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    const auto &focused = session.focus()->focus().element;
    if (focused && focused->ref == element.ref) {
        const auto askedAt = Clock::now();
        const auto snapshot = session.focus()->refresh(wanted).snapshot;
        if (snapshot != nullptr && snapshot->takenAt >= askedAt && snapshot->covers(wanted)) {
            return *snapshot;
        }
    }
    FieldReader reader(element);
    reader.setTextLimit(longestText);
    auto snapshot = reader.read(*session.connection(), wanted, {}, soon());
    return snapshot.isAnswered && !snapshot.isGone ? std::optional(std::move(snapshot)) : std::nullopt;
}

std::optional<Handle> parent(Session &session, const Handle &element) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    auto found = askParent(*session.connection(), element.ref, soon()).parent;
    // Above an application there is only the registry's list of all of them.
    if (!found || element.ref.path == rootPath) {
        return std::nullopt;
    }
    return session.connection()->handles({std::move(*found)}, soon()).front();
}

std::optional<Handle> window(Session &session, const Handle &element) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    const auto ancestry = readAncestry(*session.connection(), element, soon());
    const auto *found = ancestry ? ancestry->window() : nullptr;
    return found != nullptr ? std::optional(found->element) : std::nullopt;
}

std::optional<std::vector<Handle>> children(Session &session, const Handle &element) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    auto found = session.connection()->call(calls::children(element.ref), soon()).references(maxChildren);
    return found ? std::optional(session.connection()->handles(std::move(*found), soon())) : std::nullopt;
}

std::optional<QString> address(Session &session, const Handle &element) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    std::optional<QString> address;
    Questions questions;
    // Chromium gives it under the first name, Firefox under the second.
    for (const char *key : {"URI", "DocURL"}) {
        questions.ask(calls::withText(element.ref, documentInterface, "GetAttributeValue", key),
                      [&address](const Reply &reply) {
                          auto found = reply.string();
                          if (found && !found->isEmpty()) {
                              address = std::move(found);
                          }
                      });
    }
    questions.run(*session.connection(), soon());
    return address;
}

std::optional<Handle> application(Session &session, qint32 pid) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    const auto reply = session.connection()->call(calls::children({registryName, rootPath}), soon());
    for (auto &root :
         session.connection()->handles(reply.references(maxApplications).value_or(std::vector<ElementRef>()), soon())) {
        if (root.pid == pid) {
            return root;
        }
    }
    return std::nullopt;
}

std::optional<Handle> focusedWindow(Session &session, qint32 pid) {
    const auto root = application(session, pid);
    const auto windows = root ? windowsOf(session, *root) : std::nullopt;
    if (!windows) {
        return std::nullopt;
    }
    std::optional<Handle> last;
    const auto remembered = session.focus()->lastWindowOf(root->ref.bus);
    std::vector<Call> questions;
    for (const auto &window : *windows) {
        questions.push_back(calls::states(window.ref));
        if (window.ref == remembered) {
            last = window;
        }
    }
    const auto replies = session.connection()->callAll(questions, soon());
    for (std::size_t i = 0; i < windows->size(); ++i) {
        if (isActiveWindow(replies[i].states().value_or(States()))) {
            return (*windows)[i];
        }
    }
    return last;
}

std::optional<AXRange> selectedRange(Session &session, const Handle &element) {
    if (session.connection() == nullptr) {
        return std::nullopt;
    }
    std::optional<int> caret;
    std::optional<std::pair<int, int>> selection;
    std::optional<QString> text;
    Questions questions;
    questions.ask(calls::property(element.ref, textInterface, "CaretOffset"),
                  [&](const Reply &reply) { caret = reply.numberProperty(); });
    questions.ask(calls::withNumbers(element.ref, textInterface, "GetSelection", {0}),
                  [&](const Reply &reply) { selection = reply.pairOfNumbers(); });
    questions.ask(calls::text(element.ref, 0, -1), [&](const Reply &reply) { text = reply.string(); });
    questions.run(*session.connection(), soon());
    if (!caret || !text) {
        return std::nullopt;
    }
    const bool isSelected = selection && selection->first >= 0 && selection->second > selection->first;
    const auto from = utf16Offset(*text, isSelected ? selection->first : *caret);
    const auto to = isSelected ? utf16Offset(*text, selection->second) : from;
    return AXRange{from, to - from};
}

bool setText(Session &session, const Handle &element, const QString &text) {
    if (session.connection() == nullptr) {
        return false;
    }
    return session.connection()
        ->call(calls::withText(element.ref, editableTextInterface, "SetTextContents", text.toStdString()), soon())
        .flag()
        .value_or(false);
}

bool setSelectedRange(Session &session, const Handle &element, AXRange range) {
    if (session.connection() == nullptr) {
        return false;
    }
    const auto text = session.connection()->call(calls::text(element.ref, 0, -1), soon()).string();
    if (!text) {
        return false;
    }
    const auto from = static_cast<int>(codePointOffset(*text, range.location));
    const auto to = static_cast<int>(codePointOffset(*text, range.location + range.length));
    if (from == to) {
        return session.connection()
            ->call(calls::withNumbers(element.ref, textInterface, "SetCaretOffset", {from}), soon())
            .flag()
            .value_or(false);
    }
    if (session.connection()
            ->call(calls::withNumbers(element.ref, textInterface, "SetSelection", {0, from, to}), soon())
            .flag()
            .value_or(false)) {
        return true;
    }
    // Only what is selected already can be changed.
    return session.connection()
        ->call(calls::withNumbers(element.ref, textInterface, "AddSelection", {from, to}), soon())
        .flag()
        .value_or(false);
}

} // namespace platform::desktop::atspi::queries
