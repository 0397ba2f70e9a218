// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/KeyStorage.h"

namespace quillory {

/// What becomes of a key as a user typed or pasted it.
struct EnteredKey {
    /// Without the white space around it and the line breaks that a mail program put into it; empty when refused.
    QString key;
    /// Why it was refused, as a sentence; empty when it was not. Never holds any of the key.
    QString refusal;
};
[[nodiscard]] EnteredKey enteredKey(const QString &typed);

struct SavedKey {
    bool isSaved = false;
    /// What came of it. Never holds any of the key.
    QString sentence;
};
/// Takes a key as the user typed it to where keys are kept. May take as long as the storage does.
[[nodiscard]] SavedKey saveKey(platform::KeyStorage &keys, const QString &typed, const std::stop_token &stop);

} // namespace quillory
