// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QTextLayout>

namespace quillory::ui {

/// Formats that draw the emoji of a text from a colour typeface, where one is installed. Left to itself the toolkit
/// takes whatever typeface comes first, often one with pale outlines.
[[nodiscard]] QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font);

} // namespace quillory::ui
