// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/KeyStorage.h"

namespace quillory {

/// A key that a user typed or pasted.
struct EnteredKey {
    /// Without the white space around it and any line breaks that a mail program added; empty if refused.
    QString key;
    /// Why it was refused, as a sentence; empty if it was not. Never contains any of the key.
    QString refusal;
};
[[nodiscard]] EnteredKey enteredKey(const QString &typed);

struct SavedKey {
    bool isSaved = false;
    /// The outcome. Never contains any of the key.
    QString sentence;
};
/// Stores a key as the user typed it. May take as long as the storage does.
[[nodiscard]] SavedKey saveKey(platform::KeyStorage &keys, const QString &typed, const std::stop_token &stop);

} // namespace quillory
