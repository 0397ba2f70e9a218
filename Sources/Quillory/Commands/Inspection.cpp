// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/Inspection.h"

#include "Platform/Process.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Settings/AppSettings.h"

using namespace Qt::StringLiterals;

namespace quillory {

using platform::AXAttribute;

namespace {

QString stringOf(const platform::AXUIElement &element, AXAttribute name) {
    return AXText::attribute<QString>(element, name).value_or(QString());
}

FieldSituation situation(const AXText &ax, const platform::UserDefaults &store, const platform::AXUIElement &element,
                         bool isChat) {
    FieldSituation field;
    field.enabled = store.boolean(settingsKey::enabled);
    field.assistantMode = store.boolean(settingsKey::assistantMode);
    field.isTextElement = AXText::isTextElement(element);
    field.isBrowserUI = field.isTextElement && ax.isBrowserUIField(element);
    field.isChat = field.isTextElement && isChat;
    field.minChars = store.integer(settingsKey::minChars);
    field.maxChars = store.integer(settingsKey::maxChars);
    if (field.isChat && !field.isBrowserUI) {
        field.length = AXText::attribute<double>(element, AXAttribute::numberOfCharacters);
        field.value = AXText::attribute<QString>(element, AXAttribute::value);
        field.placeholder = stringOf(element, AXAttribute::placeholderValue);
        if (auto conversation = ChatContext::extract(element)) {
            field.conversation = std::move(conversation->text);
        }
    }
    return field;
}

InspectedElement inspected(const AXText &ax, const platform::UserDefaults &store,
                           const platform::AXUIElement &element) {
    InspectedElement seen;
    seen.pid = element.pid();
    if (const auto application = ax.application(element)) {
        seen.application = application->localizedName.value_or(QString());
        seen.bundleIdentifier = application->bundleIdentifier.value_or(QString());
    }
    seen.windowTitle = ax.focusedWindowTitle(element.pid()).value_or(QString());
    seen.role = stringOf(element, AXAttribute::role);
    seen.frame = AXText::frame(element);
    seen.canWriteValue = element.isAttributeSettable(AXAttribute::value);
    seen.canPlaceCaret = element.isAttributeSettable(AXAttribute::selectedTextRange);
    seen.recognition = ChatContext::recognise(ax, element);
    seen.field = situation(ax, store, element, seen.recognition.isChat);
    return seen;
}

RequestPlan nothing(const QString &reason) {
    return {.kind = std::nullopt, .whyNot = reason, .source = {}, .context = {}};
}

/// Why nothing is asked about a field; empty when something is.
QString obstacle(Gate gate, const FieldSituation &field) {
    switch (gate) {
    case Gate::switchedOff:
        return u"suggestions are switched off (setting \"enabled\")"_s;
    case Gate::noTextField:
        return u"what has the focus is not a text field"_s;
    case Gate::browserUI:
        return u"this field belongs to the browser itself, not to a page"_s;
    case Gate::noChat:
        return u"this is not a WhatsApp message box"_s;
    case Gate::tooLong:
        return u"the field holds more than %1 characters (setting \"maxChars\")"_s.arg(field.maxChars);
    case Gate::unreadable:
        return u"the content of the field cannot be read"_s;
    case Gate::repliesAreOff:
        return u"the box is empty, and replies are switched off (setting \"assistantMode\")"_s;
    case Gate::draftTooShort:
        return u"the draft has fewer than %1 characters (setting \"minChars\")"_s.arg(field.minChars);
    case Gate::draftTooLong:
        return u"the draft has more than %1 characters (setting \"maxChars\")"_s.arg(field.maxChars);
    case Gate::justInserted:
        return u"the draft is the text that was just inserted"_s;
    case Gate::reply:
    case Gate::rewrite:
        break;
    }
    return {};
}

RequestPlan planRequest(const FieldSituation &field) {
    const Gate gate = gateOf(field);
    if (gate == Gate::rewrite) {
        return {.kind = SuggestionKind::rewrite, .whyNot = {}, .source = *field.value, .context = field.conversation};
    }
    if (gate != Gate::reply) {
        return nothing(obstacle(gate, field));
    }
    if (!field.conversation) {
        return nothing(u"the box is empty, and no conversation was found around it"_s);
    }
    return {.kind = SuggestionKind::reply, .whyNot = {}, .source = *field.conversation, .context = {}};
}

} // namespace

Inspection inspectFocus(const platform::Platform &desktop) {
    const AppSettings settings(desktop.userDefaults, desktop.process);
    const AXText ax(desktop.accessibility, desktop.workspace);
    Inspection seen;
    seen.isTrusted = desktop.accessibility.isProcessTrusted();
    const auto focused = seen.isTrusted ? ax.focusedElement() : std::nullopt;
    if (!focused || focused->pid() == desktop.process.identifier()) {
        return seen;
    }
    seen.focus = inspected(ax, settings.store(), *focused);
    seen.plan = planRequest(seen.focus->field);
    if (seen.plan.kind) {
        const OpenRouterClient client(settings, desktop.process, desktop.urlSession);
        seen.messages = client.buildMessages(*seen.plan.kind, seen.plan.source, seen.plan.context);
        seen.models = activeModels(settings.store());
    }
    return seen;
}

} // namespace quillory
