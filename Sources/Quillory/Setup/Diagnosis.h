// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

/// What the facts about a desktop mean for the program, as pure functions of values.
namespace quillory {

/// What is known of the program itself.
struct ProgramFacts {
    /// Whether the key can be read.
    bool hasKey = false;
    /// Whether there is one, which may be in a password store that is locked.
    bool isKeyKept = false;
    /// What is wrong with the key, as a sentence; empty when nothing is.
    QString keyFault;
    /// Where requests go.
    QString serviceHost;
    /// Whether the user's environment says so.
    bool isServiceChosen = false;
    /// Why no request gets there, as a sentence; empty when one would.
    QString serviceFault;
    QString version;
    /// Whether the user has suggestions switched on.
    bool areSuggestionsOn = true;
};

/// What can be done about a finding without the user's doing more than agreeing.
enum class Remedy { none, enableAccessibility, startAtLogin, start, enterKey };

struct Finding {
    enum class State {
        good,
        /// Worth knowing; the program can do its work.
        note,
        problem,
    };
    /// A name for programs that read the findings; it stays the same.
    QString check;
    QString title;
    State state = State::good;
    QString found;
    /// What to do; empty when there is nothing to do.
    QString advice;
    Remedy remedy = Remedy::none;
    /// Whether it is about a program that the user must close and open again.
    bool needsReopening = false;
};

/// A finding for each check, in the order in which things need each other.
[[nodiscard]] std::vector<Finding> diagnose(const platform::DesktopFacts &desktop, const ProgramFacts &program);

/// What a user is offered for a finding.
struct Offer {
    /// On a button.
    QString label;
    /// As a question in a dialogue.
    QString question;
    /// Whether it is what most users want, and loses nothing.
    bool isHarmless = true;
};
/// Absent where there is nothing to offer.
[[nodiscard]] std::optional<Offer> offerFor(const Finding &finding);

/// Whether it asks for no more than a setting for later logins.
[[nodiscard]] bool isOnlyForLater(const Finding &finding);

/// Whether nothing stands in the way of the program's main work.
[[nodiscard]] bool canWork(const std::vector<Finding> &findings);

/// Whether it does its main work already: it can, and runs.
[[nodiscard]] bool isAtWork(const std::vector<Finding> &findings);

} // namespace quillory
