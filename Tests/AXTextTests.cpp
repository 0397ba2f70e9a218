// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/AXText.h"
#include "Quillory/FieldSnapshot.h"
#include "Quillory/PasteQueue.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

namespace quillory {

namespace {

using platform::Rect;
using test::Node;
namespace axAttribute = platform::axAttribute;
namespace axRole = platform::axRole;

struct AXTextTest : testing::Test {
    test::SimulatedDesktop desktop;
    Node window = desktop.applications.launch({1, QStringLiteral("org.chromium.Chromium"), QStringLiteral("Browser")},
                                              QStringLiteral("Page"));
};

TEST_F(AXTextTest, KnowsTextElementsByRoleOrByAWritableString) {
    struct Case {
        QLatin1StringView role;
        std::optional<platform::AXValue> value;
        bool settable;
        bool isText;
    };
    const auto group = QLatin1StringView("AXGroup");
    for (const auto &[role, value, settable, isText] : std::vector<Case>{
             {axRole::textField, {}, false, true},
             {axRole::textArea, {}, false, true},
             {axRole::comboBox, {}, false, true},
             {axRole::searchField, {}, false, true},
             {axRole::secureTextField, QStringLiteral("secret"), true, false},
             {group, QString(), true, true},
             {group, QStringLiteral("text"), false, false},
             {group, 3.0, true, false},
             {group, {}, true, false},
         }) {
        const Node node = window->add(role);
        node->settable = settable;
        if (value) {
            node->set(axAttribute::value, *value);
        }
        EXPECT_EQ(AXText::isTextElement(node->element()), isText) << role.data();
    }
}

TEST_F(AXTextTest, TellsABrowsersOwnFieldsByTheirAncestors) {
    EXPECT_TRUE(AXText::isBrowserUIField(window->add(axRole::textField)->element()));
    Node inner = window->add(axRole::webArea);
    for (int ancestors = 1; ancestors < 30; ++ancestors) {
        inner = inner->add(QLatin1StringView("AXGroup"));
    }
    EXPECT_FALSE(AXText::isBrowserUIField(inner->add(axRole::textArea)->element())) << "the page is the 30th ancestor";
    inner = inner->add(QLatin1StringView("AXGroup"));
    EXPECT_TRUE(AXText::isBrowserUIField(inner->add(axRole::textArea)->element())) << "the page is the 31st ancestor";

    const auto bundleOf = [&](const char *bundle) {
        return desktop.applications.launch({2, QString::fromUtf8(bundle), {}}, {})->element();
    };
    EXPECT_TRUE(AXText::isBrowserApp(bundleOf("com.google.Chrome.beta")));
    EXPECT_FALSE(AXText::isBrowserApp(bundleOf("com.google.chrome")));
    EXPECT_FALSE(AXText::isBrowserUIField(bundleOf("org.example.editor")));
}

TEST_F(AXTextTest, ConvertsFramesAndNeedsThemWhole) {
    const Node node = window->add(axRole::textArea);
    node->set(axAttribute::position, platform::Point{10, 100});
    EXPECT_FALSE(AXText::frame(node->element()).has_value());
    node->set(axAttribute::size, platform::Size{300, 30});
    EXPECT_EQ(AXText::frame(node->element()), (Rect{10, 100, 300, 30}));
    EXPECT_EQ(AXText::cocoaRect({10, 100, 300, 30}), (Rect{10, 770, 300, 30}));
    EXPECT_EQ(AXText::cocoaRect({10, 100, -300, -30}), (Rect{10, 770, 300, 30}));
    desktop.screens.attached.clear();
    EXPECT_EQ(AXText::cocoaRect({10, 100, 300, 30}), (Rect{10, -130, 300, 30}));
}

TEST_F(AXTextTest, FindsTitlesOfLivingApplicationsAlone) {
    EXPECT_EQ(AXText::focusedWindowTitle(1), QStringLiteral("Page"));
    EXPECT_EQ(AXText::focusedWindowTitle(99), std::nullopt);
    EXPECT_EQ(AXText::focusedElement(), std::nullopt);
}

struct InsertionTest : AXTextTest {
    Node editor = desktop.applications.launch({2, QStringLiteral("org.example.editor"), {}}, QStringLiteral("Draft"));
    Node page = window->add(axRole::webArea);
    Node field = fieldOf(editor);
    const QString rewrite = QStringLiteral("Hello, can you send me the price list? \U0001F64F");

    Node fieldOf(const Node &parent) {
        Node made = parent->add(axRole::textArea, {300, 800, 400, 40});
        made->settable = true;
        made->setValue(QStringLiteral("helo"));
        desktop.applications.focused = made;
        return made;
    }
};

TEST_F(InsertionTest, WritesTheValueAndPutsTheCaretBehindIt) {
    AXText::insert(rewrite, field->element());
    EXPECT_EQ(field->value(), rewrite);
    EXPECT_EQ(field->caret, (platform::AXRange{rewrite.size(), 0}));
    EXPECT_EQ(desktop.log(), QStringList{QStringLiteral("inserted via AX set")});
    // An editor that adds to the text has taken it, as long as it starts alike.
    field->onWrite = [](const QString &text) { return text.left(24) + QStringLiteral("..."); };
    AXText::insert(rewrite, field->element());
    EXPECT_EQ(desktop.log().last(), QStringLiteral("inserted via AX set"));
    EXPECT_TRUE(desktop.typed.empty());
}

TEST_F(InsertionTest, PastesWhereTheWriteIsRefusedOrDoesNotStick) {
    field->settable = false;
    AXText::insert(rewrite, field->element());
    desktop.advance(1000);
    EXPECT_EQ(field->value(), rewrite);

    field->settable = true;
    bool first = true;
    field->onWrite = [&first](const QString &text) { return std::exchange(first, false) ? text.left(5) : text; };
    AXText::insert(rewrite, field->element());
    desktop.advance(1000);
    EXPECT_EQ(field->value(), rewrite);
    EXPECT_EQ(desktop.log(), (QStringList{
                                 QStringLiteral("AX write rejected, falling back to paste"),
                                 QStringLiteral("AX set did not stick (read back 5 chars), pasting instead"),
                             }));
}

struct PasteTest : InsertionTest {
    Node box = fieldOf(page);
    const platform::PasteboardItem picture{
        {{QStringLiteral("image/png"), "PNG"}, {QStringLiteral("text/html"), "<img>"}}};

    void SetUp() override { desktop.pasteboard.copy({picture}); }
    void insert(const QString &text) { AXText::insert(text, box->element()); }
};

TEST_F(PasteTest, GivesTheClipboardBackWithAllItsTypes) {
    insert(rewrite);
    desktop.advance(250);
    EXPECT_TRUE(desktop.typed.empty());
    EXPECT_EQ(desktop.pasteboard.string(), rewrite);
    desktop.advance(10);
    EXPECT_EQ(desktop.typed, (QStringList{QStringLiteral("Command-A"), QStringLiteral("Command-V")}));
    EXPECT_EQ(box->value(), rewrite);
    desktop.advance(680);
    EXPECT_EQ(desktop.pasteboard.string(), rewrite) << "a slow application may still be fetching it";
    desktop.advance(20);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    EXPECT_EQ(desktop.applications.activated, std::vector<qint32>{1});
    EXPECT_EQ(desktop.log(), QStringList{QStringLiteral("web field, inserting via paste")});

    desktop.pasteboard.clearContents();
    insert(rewrite);
    desktop.advance(1000);
    EXPECT_TRUE(desktop.pasteboard.items.empty());
}

TEST_F(PasteTest, LeavesTheTextForABusyApplicationToFetchButNotForever) {
    desktop.pasteDelay = std::chrono::milliseconds(2000);
    insert(rewrite);
    desktop.advance(2400);
    EXPECT_EQ(box->value(), rewrite);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    desktop.pasteDelay = std::chrono::milliseconds(60'000);
    insert(rewrite);
    desktop.advance(3100);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, LeavesAloneWhatTheUserCopiesMeanwhile) {
    insert(rewrite);
    desktop.advance(2);
    desktop.pasteboard.copy(QStringLiteral("copied while saving"));
    desktop.advance(1000);
    EXPECT_EQ(desktop.pasteboard.string(), QStringLiteral("copied while saving"));
    desktop.typed.clear();
    insert(rewrite);
    desktop.advance(100);
    desktop.pasteboard.copy(QStringLiteral("copied before pasting"));
    desktop.advance(1000);
    EXPECT_TRUE(desktop.typed.empty()) << "it would have replaced the draft by what was copied";
    EXPECT_EQ(desktop.log().last(), QStringLiteral("pasteboard was taken by another program, not pasting"));
    EXPECT_EQ(desktop.pasteboard.string(), QStringLiteral("copied before pasting"));
    insert(rewrite);
    desktop.advance(400);
    desktop.pasteboard.copy(QStringLiteral("copied after pasting"));
    desktop.advance(1000);
    EXPECT_EQ(desktop.pasteboard.string(), QStringLiteral("copied after pasting"));
}

TEST_F(PasteTest, EndsWithTheProgram) {
    insert(rewrite);
    desktop.advance(100);
    abandonPastes();
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, DoesNotOverwriteWhatItCannotGiveBack) {
    desktop.pasteboard.hangs = true;
    insert(QStringLiteral("first"));
    insert(QStringLiteral("second"));
    desktop.advance(8);
    desktop.pasteboard.hangs = false;
    desktop.advance(1000);
    EXPECT_EQ(desktop.log().at(2), QStringLiteral("pasteboard could not be read, not pasting"));
    EXPECT_EQ(desktop.typed.size(), 2);
    EXPECT_EQ(box->value(), QStringLiteral("second"));
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, AClipboardManagerMayTakeTheTextOver) {
    insert(rewrite);
    desktop.advance(100);
    desktop.pasteboard.copy(rewrite);
    desktop.advance(1000);
    EXPECT_EQ(box->value(), rewrite);
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, OneFollowsTheOther) {
    insert(QStringLiteral("first"));
    desktop.advance(500);
    insert(QStringLiteral("second"));
    desktop.advance(100);
    EXPECT_EQ(box->value(), QStringLiteral("first"));
    desktop.advance(1500);
    EXPECT_EQ(box->value(), QStringLiteral("second"));
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
}

TEST_F(PasteTest, WaitsForTheUsersFingersButNotForever) {
    desktop.userHoldsKey = true;
    insert(rewrite);
    desktop.advance(1000);
    EXPECT_TRUE(desktop.typed.empty());
    desktop.userHoldsKey = false;
    desktop.advance(20);
    EXPECT_EQ(desktop.typed.size(), 2);
    desktop.advance(1000);
    desktop.userHoldsKey = true;
    insert(rewrite);
    desktop.advance(2200);
    EXPECT_EQ(desktop.typed.size(), 2);
    desktop.advance(100);
    EXPECT_EQ(desktop.typed.size(), 4);
}

TEST_F(PasteTest, NeverTypesIntoAnotherField) {
    desktop.applications.focused.reset(); // somewhere that nothing is known of
    insert(rewrite);
    desktop.advance(1500);
    EXPECT_TRUE(desktop.typed.empty());
    const Node addressBar = window->add(axRole::textField, {300, 800, 400, 40});
    desktop.applications.focused = addressBar;
    desktop.applications.activated.clear();
    insert(rewrite);
    desktop.advance(1240);
    EXPECT_EQ(desktop.log().size(), 3);
    desktop.advance(100);
    EXPECT_EQ(desktop.log().last(), QStringLiteral("focus left the field, not pasting"));
    EXPECT_TRUE(desktop.typed.empty());
    EXPECT_THAT(desktop.pasteboard.items, testing::ElementsAre(picture));
    EXPECT_EQ(desktop.applications.activated, (std::vector<qint32>{1, 1}));

    desktop.applications.focusOnActivation[1] = box;
    desktop.applications.focused = field;
    insert(rewrite);
    desktop.applications.focused = field;
    desktop.advance(1000);
    EXPECT_EQ(box->value(), rewrite) << "the second activation brought the focus back";
}

TEST_F(PasteTest, TypesIntoACopyThatTheApplicationMadeOfTheField) {
    insert(rewrite);
    box->gone = true;
    const Node copy = fieldOf(page);
    desktop.advance(1000);
    EXPECT_EQ(copy->value(), rewrite);
}

TEST(FieldSnapshot, RecognisesAFieldThatWasMadeAnew) {
    const FieldSnapshot known{7, QStringLiteral("draft"), {100, 500, 400, 40}};
    const auto moved = [&](double x, double y) { return FieldSnapshot{7, known.text, {100 + x, 500 + y, 10, 10}}; };
    EXPECT_TRUE(isRecreated(known, moved(79.9, -79.9)));
    EXPECT_FALSE(isRecreated(known, moved(80, 0)));
    EXPECT_FALSE(isRecreated(known, moved(0, -80)));
    EXPECT_FALSE(isRecreated(known, {8, known.text, known.frame}));
    EXPECT_FALSE(isRecreated(known, {7, QStringLiteral("drafts"), known.frame}));
}

} // namespace

} // namespace quillory
