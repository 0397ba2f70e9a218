// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Monitor/ModelStream.h"

namespace quillory {

/// The element that has the keyboard focus, as the program sees it.
struct InspectedElement {
    qint32 pid = 0;
    QString application;
    QString bundleIdentifier;
    QString windowTitle;
    QString role;
    std::optional<platform::Rect> frame;
    bool canWriteValue = false;
    bool canPlaceCaret = false;
    ChatContext::Recognition recognition;
    /// What it holds is taken along for a message box alone.
    FieldSituation field;
};

/// What Quillory would ask the models about a field, by the typing monitor's gate, as far as that depends on the field
/// and the settings: what Quillory has sent or inserted before is not known here.
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

/// What the program sees of the desktop at one moment.
struct Inspection {
    bool isTrusted = false;
    std::optional<InspectedElement> focus;
    RequestPlan plan;
    /// Of the request that is planned; empty when none is.
    std::vector<OpenRouterClient::Message> messages;
    std::vector<ModelChoice> models;
    /// Not looked at by inspectFocus(): a locked password store would hold up every look.
    bool hasKey = false;
    /// Where the request would go. Not looked at by inspectFocus(), either.
    QUrl serviceURL;
};

/// Looks at the focused element as the program with these services would. Main thread only.
[[nodiscard]] Inspection inspectFocus(const platform::Platform &desktop);

} // namespace quillory
