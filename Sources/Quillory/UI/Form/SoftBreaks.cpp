// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/SoftBreaks.h"

#include <QTextBoundaryFinder>
#include <QTextDocument>

#include <algorithm>

namespace quillory::ui::softBreaks {

namespace {
/// Layout takes 0.2 µs a character.
constexpr qsizetype longestLine = 8000;
constexpr qsizetype longestPiece = 4000;
constexpr int softProperty = QTextFormat::UserProperty + 1;

QTextCharFormat softFormat() {
    QTextCharFormat format;
    format.setProperty(softProperty, true);
    return format;
}

/// How much of a line to put into its next piece: up to the last space that fits, else up to the end of a character.
qsizetype pieceOf(QStringView line) {
    const QStringView start = line.first(longestPiece);
    if (const qsizetype space = start.lastIndexOf(u' '); space >= 0) {
        return space + 1;
    }
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, start.data(), start.size());
    characters.toEnd();
    return std::max<qsizetype>(characters.toPreviousBoundary(), 1);
}

void insertLine(QTextCursor &cursor, QStringView line) {
    if (line.size() > longestLine) {
        while (line.size() > longestPiece) {
            const qsizetype length = pieceOf(line);
            cursor.insertText(line.first(length).toString(), {});
            cursor.insertBlock(cursor.blockFormat(), softFormat());
            line = line.sliced(length);
        }
    }
    cursor.insertText(line.toString(), {}); // else it might take on what the break before it has
}
} // namespace

bool areNeeded(const QString &text) {
    qsizetype begin = 0;
    while (text.size() - begin > longestLine) {
        const qsizetype end = text.indexOf(u'\n', begin);
        if (end < 0 || end - begin > longestLine) {
            return true;
        }
        begin = end + 1;
    }
    return false;
}

void insert(QTextCursor cursor, const QString &text) {
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    qsizetype begin = 0;
    for (qsizetype end = text.indexOf(u'\n'); end >= 0; end = text.indexOf(u'\n', begin)) {
        insertLine(cursor, QStringView(text).sliced(begin, end - begin));
        cursor.insertBlock(cursor.blockFormat(), {});
        begin = end + 1;
    }
    insertLine(cursor, QStringView(text).sliced(begin));
    cursor.endEditBlock();
}

// The toolkit keeps the format of a break as that of the paragraph after it.
bool isContinued(const QTextBlock &paragraph) {
    return paragraph.charFormat().hasProperty(softProperty);
}

QString textBetween(const QTextDocument &document, int from, int to) {
    QString text;
    text.reserve(to - from);
    for (QTextBlock block = document.findBlock(from); block.isValid() && block.position() <= to; block = block.next()) {
        if (block.position() > from && !isContinued(block)) {
            text += u'\n';
        }
        const int begin = std::max(0, from - block.position());
        text +=
            QStringView(block.text()).sliced(begin).first(std::min(block.length() - 1, to - block.position()) - begin);
    }
    return text;
}

} // namespace quillory::ui::softBreaks
