// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/PasteQueue.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/Text.h"

namespace quillory::AXText {

using platform::AXAttribute;
using platform::AXUIElement;

namespace {

// Editors tidy what they are given; when the start is there the write took.
constexpr qsizetype verifiedPrefix = 24;

bool logIfTaken(const QString &text, const AXUIElement &element) {
    const QString readBack = attribute<QString>(element, AXAttribute::value).value_or(QString());
    const bool taken = text::hasPrefix(readBack, text::prefix(text, verifiedPrefix));
    FileLog::log(taken ? QStringLiteral("inserted via AX set")
                       : QStringLiteral("AX set did not stick (read back %1 chars), pasting instead")
                             .arg(text::characterCount(readBack)));
    return taken;
}

} // namespace

bool setValue(const AXUIElement &element, const QString &text) {
    if (!element.isAttributeSettable(AXAttribute::value) || !element.setAttributeValue(AXAttribute::value, text)) {
        return false;
    }
    element.setAttributeValue(AXAttribute::selectedTextRange, platform::AXRange{text.size(), 0});
    return true;
}

void replaceViaPaste(const AXUIElement &element, const QString &text, const std::optional<FieldSnapshot> &lastSeen) {
    paste({text, element, lastSeen ? lastSeen : snapshot(element)});
}

void insert(const QString &text, const AXUIElement &element, const std::optional<FieldSnapshot> &lastSeen) {
    if (!isBrowserApp(element) && setValue(element, text)) {
        if (logIfTaken(text, element)) {
            return;
        }
    } else {
        FileLog::log(isBrowserApp(element) ? QStringLiteral("web field, inserting via paste")
                                           : QStringLiteral("AX write rejected, falling back to paste"));
    }
    replaceViaPaste(element, text, lastSeen);
}

} // namespace quillory::AXText
