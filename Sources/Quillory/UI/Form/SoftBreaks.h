// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextBlock>
#include <QTextCursor>

/// The toolkit lays a paragraph out anew for each character that is typed into it, which takes 0.2 s in one of a
/// megabyte. A long line therefore stands in a document as several paragraphs. The breaks between them are told from
/// the text's own by a property of theirs, which undoing and redoing keep; no text that leaves the document has them.
namespace quillory::ui::softBreaks {

/// Whether a text has lines that are to be broken.
[[nodiscard]] bool areNeeded(const QString &text);
/// Inserts a text at the cursor, as one step that can be undone, with breaks in its long lines.
void insert(QTextCursor cursor, const QString &text);
/// Whether the paragraph goes on with the line of the one before.
[[nodiscard]] bool isContinued(const QTextBlock &paragraph);
/// The text between two positions, as it was before it was broken, with LF for its own breaks.
[[nodiscard]] QString textBetween(const QTextDocument &document, int from, int to);

} // namespace quillory::ui::softBreaks
