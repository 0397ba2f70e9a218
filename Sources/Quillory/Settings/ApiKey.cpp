// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/ApiKey.h"

#include "Quillory/Text.h"

#include <QRegularExpression>

#include <algorithm>

namespace quillory {

EnteredKey enteredKey(const QString &typed) {
    // Keys have some eighty characters; what is much longer is something else that was pasted.
    constexpr qsizetype longest = 512;
    static const QRegularExpression lineBreak(QStringLiteral("[ \\t]*[\\r\\n]+[ \\t]*"));
    const QString key = text::trimmed(typed).remove(lineBreak);
    const auto isForeign = [](QChar c) { return c.unicode() <= u' ' || c.unicode() > u'~'; };
    if (key.isEmpty()) {
        return {{}, QStringLiteral("No key was entered.")};
    }
    if (key.size() > longest) {
        return {{}, QStringLiteral("This is longer than any key; copy the key alone.")};
    }
    if (std::ranges::any_of(key, isForeign)) {
        return {{}, QStringLiteral("This holds a space or a character that no key has; copy the key again.")};
    }
    return {key, {}};
}

SavedKey saveKey(platform::KeyStorage &keys, const QString &typed, const std::stop_token &stop) {
    const auto [key, refusal] = enteredKey(typed);
    if (!refusal.isEmpty()) {
        return {false, refusal};
    }
    switch (keys.storeKey(key, stop)) {
    case platform::KeyPlace::passwordStore:
        return {true, QStringLiteral("Saved in the desktop's password store.")};
    case platform::KeyPlace::settingsFile:
        return {true, QStringLiteral("Saved in the settings file, which you alone can read.")};
    case platform::KeyPlace::nowhere:
        break;
    }
    return {false, QStringLiteral("The key could not be saved: the settings file cannot be written.")};
}

} // namespace quillory
