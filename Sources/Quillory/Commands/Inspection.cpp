// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Commands/Inspection.h"

#include "Platform/Process.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Settings/AppSettings.h"

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
