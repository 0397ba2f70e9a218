// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/FlatText.h"
#include "Platform/Linux/Accessibility/Roles.h"
#include "Platform/Linux/Accessibility/TextRuns.h"

#include <gmock/gmock.h>

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

TEST(FlatText, CountsInCodePointsAndInUnits) {
    const QString text = QStringLiteral("a\U0001F600b\U0001F44D\U0001F3FD");
    for (const auto &[codePoints, units] :
         std::vector<std::pair<int, int>>{{0, 0}, {1, 1}, {2, 3}, {3, 4}, {4, 6}, {5, 8}}) {
        EXPECT_EQ(utf16Offset(text, codePoints), units);
        EXPECT_EQ(codePointOffset(text, units), codePoints);
    }
    EXPECT_EQ(utf16Offset(text, 99), text.size());
    EXPECT_EQ(utf16Offset(text, -1), 0);
    EXPECT_EQ(cleanText(QStringLiteral("\U0001F600\uFEFF x\uFEFF")), QStringLiteral("\U0001F600 x\uFEFF"));
}

TEST(TextRuns, StandBetweenTheChildren) {
    const auto runs = textRuns(QStringLiteral("\U0001F600 a\uFFFC \uFFFCb"));
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].from, 0);
    EXPECT_EQ(runs[0].to, 3);
    EXPECT_EQ(runs[0].childrenBefore, 0U);
    EXPECT_EQ(runs[1].from, 6);
    EXPECT_EQ(runs[1].to, 7);
    EXPECT_EQ(runs[1].childrenBefore, 2U);
}

TEST(Roles, HaveTheProgramsNames) {
    const auto all = [](std::initializer_list<State> states) {
        std::uint64_t bits = 0;
        for (const auto state : states) {
            bits |= std::uint64_t(1) << static_cast<unsigned>(state);
        }
        return States(bits);
    };
    const auto box = all({State::editable, State::focusable, State::multiLine});
    const auto line = all({State::editable, State::focusable, State::singleLine});
    const auto inner = all({State::editable});
    const struct {
        Kind kind;
        const char *name;
    } cases[] = {
        {{Role::entry, box, {}}, "AXTextArea"},
        {{Role::entry, line, {}}, "AXTextField"},
        {{Role::entry, line, {{"text-input-type", "search"}}}, "AXSearchField"},
        {{Role::entry, box, {{"xml-roles", "searchbox"}}}, "AXSearchField"},
        {{Role::passwordText, line, {}}, "AXSecureTextField"},
        {{Role::comboBox, line, {}}, "AXComboBox"},
        {{Role::comboBox, {}, {}}, "AXPopUpButton"},
        {{Role::text, line, {}}, "AXTextField"},
        {{Role::text, {}, {}}, "AXStaticText"},
        {{Role::staticText, {}, {}}, "AXStaticText"},
        {{Role::staticText, {}, {}, true}, "AXGroup"},
        {{Role::documentWeb, box, {}}, "AXWebArea"},
        {{Role::frame, {}, {}}, "AXWindow"},
        {{static_cast<Role>(85), box, {}}, "AXTextArea"},
        {{static_cast<Role>(85), inner, {}}, "AXGroup"},
        {{static_cast<Role>(43), {}, {}}, "AXButton"},
        {{static_cast<Role>(9999), {}, {}}, "AXGroup"},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(axRoleName(test.kind), QLatin1String(test.name));
    }
}

} // namespace
