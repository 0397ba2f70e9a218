// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/RequestPlan.h"

namespace quillory {

namespace {

RequestPlan nothing(const QString &reason) {
    return {.kind = std::nullopt, .whyNot = reason, .source = {}, .context = {}};
}

/// Why nothing is asked about a field; empty when something is.
QString obstacle(Gate gate, const FieldSituation &field) {
    switch (gate) {
    case Gate::switchedOff:
        return QStringLiteral("suggestions are switched off (setting \"enabled\")");
    case Gate::noTextField:
        return QStringLiteral("what has the focus is not a text field");
    case Gate::browserUI:
        return QStringLiteral("this field belongs to the browser itself, not to a page");
    case Gate::noChat:
        return QStringLiteral("this is not a WhatsApp message box");
    case Gate::tooLong:
        return QStringLiteral("the field holds more than %1 characters (setting \"maxChars\")").arg(field.maxChars);
    case Gate::unreadable:
        return QStringLiteral("the content of the field cannot be read");
    case Gate::repliesAreOff:
        return QStringLiteral("the box is empty, and replies are switched off (setting \"assistantMode\")");
    case Gate::draftTooShort:
        return QStringLiteral("the draft has fewer than %1 characters (setting \"minChars\")").arg(field.minChars);
    case Gate::draftTooLong:
        return QStringLiteral("the draft has more than %1 characters (setting \"maxChars\")").arg(field.maxChars);
    case Gate::justInserted:
        return QStringLiteral("the draft is the text that was just inserted");
    case Gate::reply:
    case Gate::rewrite:
        break;
    }
    return {};
}

} // namespace

RequestPlan planRequest(const FieldSituation &field) {
    const Gate gate = gateOf(field);
    if (gate == Gate::rewrite) {
        return {.kind = SuggestionKind::rewrite, .whyNot = {}, .source = *field.value, .context = field.conversation};
    }
    if (gate != Gate::reply) {
        return nothing(obstacle(gate, field));
    }
    if (!field.conversation) {
        return nothing(QStringLiteral("the box is empty, and no conversation was found around it"));
    }
    return {.kind = SuggestionKind::reply, .whyNot = {}, .source = *field.conversation, .context = {}};
}

} // namespace quillory
