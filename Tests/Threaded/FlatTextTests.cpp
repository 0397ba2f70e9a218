// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Text/FlatText.h"
#include "Platform/Linux/Accessibility/Text/TextRuns.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace {

using namespace platform::desktop::atspi;

TextPiece block(const char16_t *text, std::vector<TextPiece> embedded = {}) {
    return {QString::fromUtf16(text), true, std::move(embedded)};
}

TextPiece inlined(const char16_t *text, std::vector<TextPiece> embedded = {}) {
    return {QString::fromUtf16(text), false, std::move(embedded)};
}

TEST(FlatText, IsWhatTheUserSees) {
    const struct {
        const char *what;
        TextPiece piece;
        const char16_t *text;
    } cases[] = {
        {"a plain field keeps its last line break", inlined(u"a\n"), u"a\n"},
        {"an empty editor of one blank paragraph", block(u"\uFFFC", {block(u"\n")}), u""},
        {"an empty editor", block(u""), u""},
        {"blank paragraphs first and last", block(u"\uFFFC\uFFFC\uFFFC", {block(u"\n"), block(u"a"), block(u"\n")}),
         u"\na\n"},
        {"a line break in a paragraph, and one at its end", block(u"\uFFFC\uFFFC", {block(u"a\nb\n\n"), block(u"c")}),
         u"a\nb\n\nc"},
        {"inline pieces", block(u"\uFFFC", {block(u"a \uFFFC c", {inlined(u"b")})}), u"a b c"},
        {"text, then a block, then text", block(u"a\uFFFCc", {block(u"b")}), u"a\nb\nc"},
        {"blocks in blocks", block(u"\uFFFC\uFFFC", {block(u"\uFFFC", {block(u"a")}), block(u"b")}), u"a\nb"},
        {"fewer pieces than stand-ins", block(u"a\uFFFCb\uFFFC", {inlined(u"-")}), u"a-b\uFFFC"},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(flatText(test.piece), QString::fromUtf16(test.text)) << test.what;
    }
}

// Each style is given by its end and its font size; the outcome is one line for each run, with its ranges.
TEST(FoldedText, ComesApartIntoLines) {
    using Styles = std::vector<std::pair<int, std::string>>;
    const struct {
        const char *text;
        Styles styles;
        const char *lines;
    } cases[] = {
        {"", {}, ""},
        {"\uFFFC\uFFFC \uFFFC", {}, ""},
        {"\U0001F600 a\uFFFC \uFFFCb", {{3, ""}, {7, ""}}, "0:\U0001F600 a[0-3]|2:b[6-7]"},
        {"Is it in stock?12:45 PM", {{15, ""}, {23, "8"}}, "0:Is it in stock?[0-15]|0:12:45 PM[15-23]"},
        {"Mariamonline", {{6, ""}, {12, ""}}, "0:Mariam[0-6]|0:online[6-12]"},
        {"Hi \U0001F389\uFEFF12:48", {{5, ""}, {10, "8"}}, "0:Hi \U0001F389[0-4]|0:12:48[5-10]"},
        {"a bold word, (and) another12:48",
         {{2, ""}, {6, ""}, {11, ""}, {14, ""}, {17, ""}, {26, ""}, {31, ""}},
         "0:a bold word, (and) another[0-26]|0:12:48[26-31]"},
        {"here: \uFFFC 12:48", {{6, ""}, {13, "8"}}, "0:here: [0-5]|1: 12:48[8-13]"},
        {"line\nline12:48", {{9, ""}, {14, "8"}}, "0:line\nline[0-9]|0:12:48[9-14]"},
        {"one two", {{4, ""}, {2, "9"}}, "0:one [0-3]|0:two[4-7]"},
        {"one two", {{-1, ""}}, "0:one two[0-7]"},
        {"ok! \u0645\u0631 5 \u062F", {{99, ""}}, "0:ok! \u0645\u0631 5 \u062F[0-3][4-10]"},
    };
    for (const auto &test : cases) {
        FoldedText folded(QString::fromUtf8(test.text));
        for (const auto &[to, size] : test.styles) {
            ASSERT_TRUE(folded.unknownStyle()) << test.text;
            folded.addStyle(to, size);
        }
        EXPECT_FALSE(folded.unknownStyle()) << test.text;
        QStringList lines;
        for (const auto &run : folded.runs()) {
            lines += QString::number(run.childrenBefore) + u':' + run.text;
            for (const auto &range : run.measured) {
                lines.back() += u"[%1-%2]"_s.arg(range.from).arg(range.to);
            }
        }
        EXPECT_EQ(lines.join(u'|'), QString::fromUtf8(test.lines));
    }
    FoldedText letters(QString(5'000, u'x'));
    int asked = 0;
    for (; letters.unknownStyle(); ++asked) {
        letters.addStyle(*letters.unknownStyle() + 1, std::to_string(asked));
    }
    EXPECT_LT(asked, 30) << "a text painted letter by letter is asked about without end";
}

} // namespace
