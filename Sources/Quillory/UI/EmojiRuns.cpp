// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/UI/EmojiRuns.h"

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

struct Character {
    char32_t value = 0;
    int length = 0;
};

Character characterAt(const QString &text, int index) {
    const QChar first = text.at(index);
    if (first.isHighSurrogate() && index + 1 < text.size() && text.at(index + 1).isLowSurrogate()) {
        return {QChar::surrogateToUcs4(first, text.at(index + 1)), 2};
    }
    return {first.unicode(), 1};
}

bool isPictograph(char32_t character) {
    return character >= 0x1F000 && character <= 0x1FAFF;
}

/// What joins or changes the emoji before it: a joiner, a style, a key cap, a flag's tags.
bool continuesEmoji(char32_t character) {
    return isPictograph(character) || character == emojiStyle || character == 0x200D || character == 0x20E3 ||
           (character >= 0xE0020 && character <= 0xE007F);
}

bool startsEmoji(const QString &text, int index, Character character) {
    const int next = index + character.length;
    return isPictograph(character.value) || (next < text.size() && text.at(next).unicode() == emojiStyle);
}

int endOfEmoji(const QString &text, int index) {
    int end = index + characterAt(text, index).length;
    while (end < text.size()) {
        const Character next = characterAt(text, end);
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
        const Character character = characterAt(text, i);
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
