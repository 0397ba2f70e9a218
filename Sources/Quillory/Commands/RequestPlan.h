// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/SuggestionKind.h"

#include <QString>

#include <optional>

/// What Quillory would ask the models about a field, as a pure function of values.
namespace quillory {

struct RequestPlan {
    /// Absent when nothing would be sent.
    std::optional<SuggestionKind> kind;
    /// Why nothing would be sent, as a sentence without its full stop.
    QString whyNot;
    /// The draft, or the conversation to reply to.
    QString source;
    /// The conversation behind a draft.
    std::optional<QString> context;
};

/// Decides by the typing monitor's gate, as far as that depends on the field and the settings: what Quillory has sent
/// or inserted before is not known here.
[[nodiscard]] RequestPlan planRequest(const FieldSituation &field);

} // namespace quillory
