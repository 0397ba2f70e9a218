// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/SuggestionKind.h"

#include <QString>

#include <optional>

/// What the program would ask the models for a field as it stands, as a pure function of values.
namespace quillory {

struct RequestPlan {
    /// Absent when nothing would be asked.
    std::optional<SuggestionKind> kind;
    /// Why nothing would be asked, as a sentence without its full stop.
    QString whyNot;
    /// The draft, or the conversation to reply to.
    QString source;
    /// The conversation behind a draft.
    std::optional<QString> context;
};

/// Decided by the gate of the typing monitor, as far as it depends on the field and the settings; what the program has
/// asked or inserted before is not known here.
[[nodiscard]] RequestPlan planRequest(const FieldSituation &field);

} // namespace quillory
