// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Protocol.h"

#include <QString>

#include <vector>

namespace platform::desktop::atspi {

/// A piece of a rich-text box: its text, in which each U+FFFC stands for one of the embedded pieces, in their order.
struct TextPiece {
    QString text;
    bool isBlock = false;
    std::vector<TextPiece> embedded;
};

/// The text as the user sees it: embedded pieces in place of their stand-ins, blocks on lines of their own, no line
/// break that an editor only keeps to give a last or an empty line its height.
[[nodiscard]] QString flatText(const TextPiece &piece);

/// A text without the fillers that Firefox puts in to keep its offsets right.
[[nodiscard]] QString cleanText(const QString &text);

/// The bus counts characters in code points, the program in UTF-16 units. Out-of-range offsets give the nearest end.
[[nodiscard]] qsizetype utf16Offset(const QString &text, qsizetype codePoints);
[[nodiscard]] qsizetype codePointOffset(const QString &text, qsizetype utf16Units);

} // namespace platform::desktop::atspi
