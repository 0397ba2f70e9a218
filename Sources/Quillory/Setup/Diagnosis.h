// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"

/// What the facts about a desktop mean for Quillory, as pure functions of values.
namespace quillory {

/// What is known of Quillory itself.
struct ProgramFacts {
    /// Whether the key can be read.
    bool hasKey = false;
    /// Whether a key is stored, perhaps in a password store that is locked.
    bool isKeyKept = false;
    /// What is wrong with the key, as a sentence without its full stop; empty when nothing is.
    QString keyFault;
    /// The host that requests go to.
    QString serviceHost;
    /// Whether QUILLORY_MODEL_SERVICE chose that host.
    bool isServiceChosen = false;
    /// Why no request gets there, as a sentence without its full stop; empty when requests do.
    QString serviceFault;
    QString version;
    /// Whether the user has suggestions switched on.
    bool areSuggestionsOn = true;
};

/// What Quillory can do about a finding once the user agrees.
enum class Remedy { none, enableAccessibility, startAtLogin, start, enterKey };

struct Finding {
    enum class State {
        good,
        /// Worth knowing, but Quillory works all the same.
        note,
        problem,
    };
    /// A stable name, for programs that read the findings.
    QString check;
    QString title;
    State state = State::good;
    QString found;
    /// What to do; empty when nothing needs doing.
    QString advice;
    Remedy remedy = Remedy::none;
    /// Whether the finding is about a program that the user has to close and open again.
    bool needsReopening = false;
    friend bool operator==(const Finding &, const Finding &) = default;
};

/// One finding or more for each check, in the order in which things depend on each other.
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
/// Absent when there is nothing to offer.
[[nodiscard]] std::optional<Offer> offerFor(const Finding &finding);

/// Whether the finding is only about later logins.
[[nodiscard]] bool isOnlyForLater(const Finding &finding);

/// Whether nothing keeps Quillory from working.
[[nodiscard]] bool canWork(const std::vector<Finding> &findings);

/// Whether Quillory works already: nothing keeps it from that, and it runs.
[[nodiscard]] bool isAtWork(const std::vector<Finding> &findings);

/// Whether WhatsApp's message box can be seen in none of the running programs yet, so that another look is worth while.
[[nodiscard]] bool isWaitingForChat(const std::vector<Finding> &findings);

} // namespace quillory
