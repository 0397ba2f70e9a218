// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/RequestPlan.h"

#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Text.h"

#include <cmath>
#include <limits>

namespace quillory {

namespace {

RequestPlan nothing(const QString &reason) {
    return {.kind = std::nullopt, .whyNot = reason, .source = {}, .context = {}};
}

/// Why a field is left alone whatever it holds; empty when it is not.
QString obstacle(const FieldSituation &field) {
    if (!field.enabled) {
        return QStringLiteral("suggestions are switched off (setting \"enabled\")");
    }
    if (!field.isTextElement) {
        return QStringLiteral("what has the focus is no text field");
    }
    if (field.isBrowserUI) {
        return QStringLiteral("this field belongs to the browser itself, not to a page");
    }
    if (!field.isChat) {
        return QStringLiteral("this is no WhatsApp message box");
    }
    if (!field.value) {
        return QStringLiteral("the field does not tell what it holds");
    }
    if (field.length && std::trunc(*field.length) > static_cast<double>(field.maxChars)) {
        return QStringLiteral("the field holds more than %1 characters (setting \"maxChars\")").arg(field.maxChars);
    }
    return {};
}

RequestPlan planReply(const FieldSituation &field) {
    if (!field.assistantMode) {
        return nothing(QStringLiteral("the box is empty, and replies are switched off (setting \"assistantMode\")"));
    }
    if (!field.conversation) {
        return nothing(QStringLiteral("the box is empty, and no conversation can be read around it"));
    }
    return {.kind = SuggestionKind::reply, .whyNot = {}, .source = *field.conversation, .context = {}};
}

} // namespace

RequestPlan planRequest(const FieldSituation &field) {
    if (const QString reason = obstacle(field); !reason.isEmpty()) {
        return nothing(reason);
    }
    const QString &draft = *field.value;
    if (isEmptyField(draft, field.placeholder)) {
        return planReply(field);
    }
    if (!text::hasAtLeast(text::trimmed(draft), field.minChars)) {
        return nothing(
            QStringLiteral("the draft has fewer than %1 characters (setting \"minChars\")").arg(field.minChars));
    }
    if (!mayRewrite(draft, {.minChars = field.minChars,
                            .maxChars = field.maxChars,
                            .lastInserted = {},
                            .secondsSinceInsert = std::numeric_limits<double>::infinity()})) {
        return nothing(
            QStringLiteral("the draft has more than %1 characters (setting \"maxChars\")").arg(field.maxChars));
    }
    return {.kind = SuggestionKind::rewrite, .whyNot = {}, .source = draft, .context = field.conversation};
}

} // namespace quillory
