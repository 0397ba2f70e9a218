// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/AXText.h"
#include "Quillory/Field/PasteQueue.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

using platform::AXAttribute;
using platform::Rect;
using test::Node;
namespace axRole = platform::axRole;

struct AXTextTest : testing::Test {
    test::SimulatedDesktop desktop;
    const AXText ax{desktop.applications, desktop.applications};
    Node window = desktop.applications.launch({1, u"org.chromium.Chromium"_s, u"Browser"_s}, u"Page"_s);
};

TEST_F(AXTextTest, KnowsTextElementsByRoleOrByAWritableString) {
    const auto group = QLatin1StringView("AXGroup");
    using Case = std::tuple<QLatin1StringView, std::optional<platform::AXValue>, bool, bool>;
    for (const auto &[role, value, settable, isText] : std::vector<Case>{
             {axRole::textField, {}, false, true},
             {axRole::textArea, {}, false, true},
             {axRole::comboBox, {}, false, true},
             {axRole::searchField, {}, false, true},
             {axRole::secureTextField, u"secret"_s, true, false},
             {group, QString(), true, true},
             {group, u"text"_s, false, false},
             {group, 3.0, true, false},
             {group, {}, true, false},
         }) {
        const Node node = window->add(role);
        node->settable = settable;
        if (value) {
            node->set(AXAttribute::value, *value);
        }
        EXPECT_EQ(AXText::isTextElement(node->element()), isText) << role.data();
    }
}

TEST_F(AXTextTest, TellsABrowsersOwnFieldsByTheirAncestors) {
    EXPECT_TRUE(ax.isBrowserUIField(window->add(axRole::textField)->element()));
    Node inner = window->add(axRole::webArea);
    for (int ancestors = 1; ancestors < 30; ++ancestors) {
        inner = inner->add(QLatin1StringView("AXGroup"));
    }
    EXPECT_FALSE(ax.isBrowserUIField(inner->add(axRole::textArea)->element())) << "the page is the 30th ancestor";
    inner = inner->add(QLatin1StringView("AXGroup"));
    EXPECT_TRUE(ax.isBrowserUIField(inner->add(axRole::textArea)->element())) << "the page is the 31st ancestor";

    const auto windowOf = [&](const QString &bundle) {
        return desktop.applications.launch({2, bundle, {}}, {})->element();
    };
    EXPECT_TRUE(ax.isBrowserApp(windowOf(u"com.google.Chrome.beta"_s)));
    EXPECT_FALSE(ax.isBrowserUIField(windowOf(u"org.example.editor"_s)));
}

TEST_F(AXTextTest, ConvertsFramesAndNeedsThemWhole) {
    const Node node = window->add(axRole::textArea);
    node->set(AXAttribute::position, platform::Point{10, 100});
    EXPECT_FALSE(AXText::frame(node->element()).has_value());
    node->set(AXAttribute::size, platform::Size{300, 30});
    EXPECT_EQ(AXText::frame(node->element()), (Rect{10, 100, 300, 30}));
    EXPECT_EQ(AXText::cocoaRect({10, 100, 300, 30}, desktop.screens.attached), (Rect{10, 770, 300, 30}));
    EXPECT_EQ(AXText::cocoaRect({10, 100, 300, 30}, {}), (Rect{10, -130, 300, 30}));
}

struct InsertionTest : AXTextTest {
    std::optional<PasteQueue> pastes{
        std::in_place, ax,
        PasteQueue::Services{desktop.keyPoster(), desktop.mainQueue, desktop.pasteboard, desktop.applications}};
    Node editor = desktop.applications.launch({2, u"org.example.editor"_s, {}}, u"Draft"_s);
    Node page = window->add(axRole::webArea);
    Node field = fieldOf(editor);
    const QString rewrite = u"Hello, can you send me the price list? \U0001F64F"_s;

    Node fieldOf(const Node &parent) {
        Node made = parent->add(axRole::textArea, {300, 800, 400, 40});
        made->settable = true;
        made->setValue(u"helo"_s);
        desktop.applications.focused = made;
        return made;
    }
};

TEST_F(InsertionTest, WritesTheValueAndPutsTheCaretBehindIt) {
    ax.insert(rewrite, field->element(), *pastes);
    EXPECT_EQ(field->value(), rewrite);
    EXPECT_EQ(field->caret, (platform::AXRange{rewrite.size(), 0}));
    EXPECT_EQ(desktop.log(), QStringList{u"inserted via AX set"_s});
    // An editor that adds to the text has taken it, as long as it starts alike.
    field->onWrite = [](const QString &text) { return text.left(24) + u"..."_s; };
    ax.insert(rewrite, field->element(), *pastes);
    EXPECT_EQ(desktop.log().last(), u"inserted via AX set"_s);
    EXPECT_TRUE(desktop.typed.empty());
}

TEST_F(InsertionTest, PastesWhereTheWriteIsRefusedOrDoesNotStick) {
    field->settable = false;
    ax.insert(rewrite, field->element(), *pastes);
    desktop.advance(1000);
    EXPECT_EQ(field->value(), rewrite);

    field->settable = true;
    bool first = true;
    field->onWrite = [&first](const QString &text) { return std::exchange(first, false) ? text.left(5) : text; };
    ax.insert(rewrite, field->element(), *pastes);
    desktop.advance(1000);
    EXPECT_EQ(field->value(), rewrite);
    EXPECT_EQ(desktop.log(), (QStringList{u"AX write rejected, falling back to paste"_s,
                                          u"AX set did not stick (read back 5 chars), pasting instead"_s}));
}

struct PasteTest : InsertionTest {
    Node box = fieldOf(page);
    const platform::PasteboardItem picture{{{u"image/png"_s, "PNG"}, {u"text/html"_s, "<img>"}}};

    void SetUp() override { desktop.pasteboard.copy({picture}); }
    void insert(const QString &text, int thenMilliseconds) {
        ax.insert(text, box->element(), *pastes);
        desktop.advance(thenMilliseconds);
    }
};

TEST_F(PasteTest, GivesTheClipboardBackWithAllItsTypes) {
    insert(rewrite, 250);
    EXPECT_TRUE(desktop.typed.empty());
    EXPECT_EQ(desktop.pasteboard.string(), rewrite);
    desktop.advance(10);
    EXPECT_EQ(desktop.typed, (QStringList{u"Command-A"_s, u"Command-V"_s}));
    EXPECT_EQ(box->value(), rewrite);
    desktop.advance(680);
    EXPECT_EQ(desktop.pasteboard.string(), rewrite) << "a slow application may still be fetching it";
    desktop.advance(20);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    EXPECT_EQ(desktop.applications.activated, std::vector<qint32>{1});
    EXPECT_EQ(desktop.log(), QStringList{u"web field, inserting via paste"_s});
}

TEST_F(PasteTest, LeavesTheTextForABusyApplicationToFetchButNotForever) {
    desktop.pasteDelay = std::chrono::milliseconds(2000);
    insert(rewrite, 2400);
    EXPECT_EQ(box->value(), rewrite);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    desktop.pasteDelay = std::chrono::milliseconds(60'000);
    insert(rewrite, 3100);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, LeavesAloneWhatTheUserCopiesMeanwhile) {
    for (const auto &[when, copied, isTyped] : {std::tuple(2, u"while saving"_s, true),
                                                {100, u"before pasting"_s, false}, // it would replace the draft
                                                {400, u"after pasting"_s, true}}) {
        desktop.typed.clear();
        insert(rewrite, when);
        desktop.pasteboard.copy(copied);
        desktop.advance(1000);
        EXPECT_EQ(desktop.pasteboard.string(), copied);
        EXPECT_EQ(!desktop.typed.isEmpty(), isTyped) << copied.toStdString();
    }
    EXPECT_TRUE(desktop.log().contains(u"pasteboard was taken by another program, not pasting"_s));
}

TEST_F(PasteTest, EndsWithTheProgram) {
    insert(rewrite, 100);
    pastes.reset();
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, DoesNotOverwriteWhatItCannotGiveBack) {
    desktop.pasteboard.hangs = true;
    insert(u"first"_s, 0);
    insert(u"second"_s, 8);
    desktop.pasteboard.hangs = false;
    desktop.advance(1000);
    EXPECT_EQ(desktop.log().at(2), u"pasteboard could not be read, not pasting"_s);
    EXPECT_EQ(desktop.typed.size(), 2);
    EXPECT_EQ(box->value(), u"second"_s);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, AClipboardManagerMayTakeTheTextOver) {
    insert(rewrite, 100);
    desktop.pasteboard.copy(rewrite);
    desktop.advance(1000);
    EXPECT_EQ(box->value(), rewrite);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, WaitsForTheUsersFingersButNotForever) {
    desktop.userHoldsKey = true;
    insert(rewrite, 1000);
    EXPECT_TRUE(desktop.typed.empty());
    desktop.userHoldsKey = false;
    desktop.advance(1020);
    EXPECT_EQ(desktop.typed.size(), 2);
    desktop.userHoldsKey = true;
    insert(rewrite, 2300);
    EXPECT_EQ(desktop.typed.size(), 4);
}

TEST_F(PasteTest, NeverTypesIntoAnotherField) {
    desktop.applications.focused = window->add(axRole::textField, {300, 800, 400, 40});
    insert(rewrite, 1340);
    EXPECT_EQ(desktop.log().last(), u"focus left the field, not pasting"_s);
    EXPECT_TRUE(desktop.typed.empty());
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    EXPECT_EQ(desktop.applications.activated, (std::vector<qint32>{1, 1}));

    desktop.applications.focusOnActivation[1] = box;
    insert(rewrite, 0);
    desktop.applications.focused = field;
    desktop.advance(1000);
    EXPECT_EQ(box->value(), rewrite) << "the second activation brought the focus back";
}

TEST_F(PasteTest, TypesIntoACopyThatTheApplicationMadeOfTheField) {
    insert(rewrite, 0);
    box->gone = true;
    const Node copy = fieldOf(page);
    desktop.advance(1000);
    EXPECT_EQ(copy->value(), rewrite);
}

} // namespace
} // namespace quillory
