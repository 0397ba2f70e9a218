// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Card/EmojiRuns.h"

#include "Quillory/Text.h"

#include <QFontDatabase>
#include <QTextCharFormat>

namespace quillory::ui {

namespace {

constexpr char32_t emojiStyle = 0xFE0F;

const QString &colourFamily() {
    static const QString family =
        QFontDatabase::hasFamily(QStringLiteral("Noto Color Emoji")) ? QStringLiteral("Noto Color Emoji") : QString();
    return family;
}

text::CodePoint characterAt(const QString &text, int index) {
    return text::firstCodePoint(QStringView(text).sliced(index));
}

bool isPictograph(char32_t character) {
    return character >= 0x1F000 && character <= 0x1FAFF;
}

/// What joins or changes the emoji before it: a joiner, a style, a key cap, a flag's tags.
bool continuesEmoji(char32_t character) {
    return isPictograph(character) || character == emojiStyle || character == 0x200D || character == 0x20E3 ||
           (character >= 0xE0020 && character <= 0xE007F);
}

bool startsEmoji(const QString &text, int index, text::CodePoint character) {
    const int next = index + character.length;
    return isPictograph(character.value) || (next < text.size() && text.at(next).unicode() == emojiStyle);
}

int endOfEmoji(const QString &text, int index) {
    int end = index + characterAt(text, index).length;
    while (end < text.size()) {
        const text::CodePoint next = characterAt(text, end);
        if (!continuesEmoji(next.value) && !startsEmoji(text, end, next)) {
            break;
        }
        end += next.length;
    }
    return end;
}

} // namespace

QList<QTextLayout::FormatRange> emojiFormats(const QString &text, const QFont &font) {
    QList<QTextLayout::FormatRange> formats;
    for (int i = 0; i < text.size();) {
        const text::CodePoint character = characterAt(text, i);
        if (!startsEmoji(text, i, character) || colourFamily().isEmpty()) {
            i += character.length;
            continue;
        }
        const int end = endOfEmoji(text, i);
        QFont colour = font;
        colour.setFamilies(QStringList{colourFamily()} + font.families());
        QTextCharFormat format;
        format.setFont(colour);
        formats.append({i, end - i, format});
        i = end;
    }
    return formats;
}

} // namespace quillory::ui
