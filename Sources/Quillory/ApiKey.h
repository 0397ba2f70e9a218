// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>

namespace quillory {

/// What becomes of a key as a user typed or pasted it.
struct EnteredKey {
    /// Without the white space around it and the line breaks that a mail program put into it; empty when refused.
    QString key;
    /// Why it was refused, as a sentence; empty when it was not. Never holds any of the key.
    QString refusal;
};
[[nodiscard]] EnteredKey enteredKey(const QString &typed);

} // namespace quillory
