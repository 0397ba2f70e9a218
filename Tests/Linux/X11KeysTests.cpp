// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/X11/Keys/X11KeyPoster.h"

#include <gmock/gmock.h>

using namespace platform;
using namespace platform::desktop;

namespace quillory::test {
namespace {

constexpr xcb_keycode_t escape = 9, tabulator = 23, control = 37, shift = 50, capsLock = 66, numLock = 77, menu = 135,
                        letter = 24;

class X11Keys : public testing::Test {
  protected:
    void SetUp() override { connection->watch(); }

    void armTap() {
        makeTap();
        ASSERT_TRUE(tap && tap->setEnabled(true));
    }
    void makeTap() {
        tap = taps.create([this](const TapEvent &event) {
            asked += (asked.empty() ? "" : " ") + std::to_string(event.key) + "^" + std::to_string(event.flags);
            return verdict;
        });
    }
    void setLayout(const char *layout, const char *option = "") {
        ASSERT_EQ(run({"setxkbmap", "-layout", layout, "-option", "", "-option", option}), 0);
        (void)user.keysUntilEnd();
    }

    std::unique_ptr<X11Connection> connection = X11Connection::open();
    X11Keyboard keyboard{*connection};
    X11EventTaps taps{*connection, keyboard};
    X11KeyPoster poster{*connection, keyboard, taps};
    XClient user;
    TapVerdict verdict = TapVerdict::swallow;
    std::string asked;
    std::unique_ptr<EventTap> tap;
};

TEST_F(X11Keys, SwallowsOrPassesWhateverLocksAndLayoutAreOn) {
    armTap();
    const struct {
        const char *layout;
        std::vector<xcb_keycode_t> locks;
    } cases[] = {{"us", {}}, {"us", {capsLock, numLock}}, {"ara,us", {capsLock}}, {"us,ru,gr", {menu, menu, numLock}}};
    for (const auto &[layout, locks] : cases) {
        SCOPED_TRACE(layout + std::string(" ") + std::to_string(locks.size()));
        setLayout(layout, "grp:menu_toggle");
        for (const xcb_keycode_t key : locks) {
            user.tap(key);
        }
        (void)user.keysUntilEnd();
        asked.clear();
        verdict = TapVerdict::swallow;
        user.tap(tabulator);
        user.tap(escape);
        EXPECT_EQ(user.keysUntilEnd(), "");
        EXPECT_EQ(asked, "48^0 53^0");
        verdict = TapVerdict::pass;
        user.tap(tabulator);
        const std::string passed = user.keysUntilEnd();
        EXPECT_THAT(passed, testing::StartsWith("+23"));
        EXPECT_THAT(passed, testing::EndsWith(" -23"));
        for (const xcb_keycode_t key : locks) {
            user.tap(key);
        }
        setLayout("us");
    }
}

TEST_F(X11Keys, LeavesEverythingElseToTheApplication) {
    armTap();
    user.finger(shift, true);
    user.tap(tabulator);
    user.finger(shift, false);
    user.tap(letter);
    EXPECT_EQ(user.keysUntilEnd(), "+50 +23^1 -23 -50 +24 -24");
    EXPECT_EQ(asked, "");

    tap->setEnabled(false);
    user.tap(tabulator);
    user.tap(escape);
    EXPECT_EQ(user.keysUntilEnd(), "+23 -23 +9 -9");
    EXPECT_EQ(asked, "");
}

TEST_F(X11Keys, SwallowsAHeldKeyToItsEnd) {
    armTap();
    run({"xset", "r", "rate", "100", "100"});
    int repeats = -1;
    const auto counter = connection->onEvent([&](const xcb_generic_event_t &event) {
        repeats += eventType(event) == XCB_KEY_PRESS && eventAs<xcb_key_press_event_t>(event).detail == tabulator;
    });
    user.finger(tabulator, true);
    EXPECT_TRUE(spinUntil([&] { return repeats >= 5; }));
    EXPECT_EQ(asked, "48^0");
    user.tap(letter); // ends the repeats, and is the application's
    user.finger(tabulator, false);
    EXPECT_EQ(user.keysUntilEnd(), "+24 -24 -23");

    asked.clear();
    repeats = -1;
    user.finger(tabulator, true);
    ASSERT_TRUE(spinUntil([&] { return !asked.empty(); }));
    tap->setEnabled(false);
    EXPECT_TRUE(poster.userHoldsKeys());
    EXPECT_TRUE(spinUntil([&] { return repeats >= 5; }));
    user.finger(tabulator, false);
    EXPECT_EQ(user.keysUntilEnd(), "");
    EXPECT_EQ(asked, "48^0");
    EXPECT_FALSE(poster.userHoldsKeys());
    user.tap(tabulator);
    EXPECT_EQ(user.keysUntilEnd(), "+23 -23");
}

TEST_F(X11Keys, FollowsKeysThatTheUserHasMoved) {
    armTap();
    setLayout("us", "caps:swapescape");
    ASSERT_TRUE(spinUntil([&] { return keyboard.keyCodes(keyCode::escape).front() == capsLock; }));
    user.tap(capsLock);
    EXPECT_EQ(user.keysUntilEnd(), "");
    EXPECT_EQ(asked, "53^0");
}

TEST_F(X11Keys, CannotTakeKeysThatAnotherProgramHolds) {
    X11Connection &other = user.connection();
    const auto grab = [&](std::uint16_t modifier, xcb_keycode_t key) {
        xcb_grab_key(other.get(), 0, other.root(), modifier, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        other.sync();
    };
    grab(XCB_MOD_MASK_2, tabulator);
    makeTap();
    EXPECT_EQ(tap, nullptr);
    xcb_ungrab_key(other.get(), tabulator, other.root(), XCB_MOD_MASK_ANY);
    other.sync();
    makeTap();
    ASSERT_NE(tap, nullptr);
    grab(XCB_MOD_MASK_LOCK, escape);
    EXPECT_FALSE(tap->setEnabled(true));
    user.tap(tabulator);
    EXPECT_EQ(user.keysUntilEnd(), "+23 -23"); // nothing is left half grabbed
}

TEST_F(X11Keys, TypesPositionsWithExactlyTheModifiersAskedFor) {
    for (const char *layout : {"us", "ara,us", "fr"}) {
        setLayout(layout);
        EXPECT_TRUE(poster.postKey(keyCode::a, eventFlag::command));
        EXPECT_TRUE(poster.postKey(keyCode::v, eventFlag::command));
        EXPECT_EQ(user.keysUntilEnd(), "+37 +38^4 -38 -37 +37 +55^4 -55 -37") << layout;
    }
    EXPECT_FALSE(poster.postKey(1234, 0));
}

TEST_F(X11Keys, GivesHeldModifiersBackAndLeavesNoneStuck) {
    const struct {
        const char *holder;
        void (XClient::*hold)(xcb_keycode_t, bool);
    } holders[] = {{"finger", &XClient::finger}, {"program", &XClient::fake}};
    for (const auto &[holder, hold] : holders) {
        SCOPED_TRACE(holder);
        (user.*hold)(shift, true);
        EXPECT_TRUE(poster.userHoldsKeys());
        EXPECT_TRUE(poster.postKey(keyCode::a, eventFlag::command));
        EXPECT_EQ(user.modifiers(), XCB_MOD_MASK_SHIFT);
        (user.*hold)(shift, false);
        EXPECT_EQ(user.modifiers(), 0);
        EXPECT_EQ(user.keysUntilEnd(), "+50 -50 +37 +38^4 -38 -37 +50 -50");
        // The user holds the very modifier that is wanted.
        (user.*hold)(control, true);
        EXPECT_TRUE(poster.postKey(keyCode::v, eventFlag::command));
        EXPECT_EQ(user.modifiers(), XCB_MOD_MASK_CONTROL);
        (user.*hold)(control, false);
        EXPECT_EQ(user.modifiers(), 0);
        EXPECT_NE(user.keysUntilEnd().find("+55^4 -55"), std::string::npos);
        EXPECT_FALSE(poster.userHoldsKeys());
        EXPECT_TRUE(poster.postKey(keyCode::v, eventFlag::shift | eventFlag::command));
        EXPECT_NE(user.keysUntilEnd().find("+55^5 -55"), std::string::npos);
        EXPECT_EQ(user.modifiers(), 0);
    }
}

TEST_F(X11Keys, PostsWhileASwallowedKeyIsStillDown) {
    armTap();
    user.finger(tabulator, true);
    ASSERT_TRUE(spinUntil([&] { return !asked.empty(); }));
    tap->setEnabled(false);
    EXPECT_TRUE(poster.postKey(keyCode::v, eventFlag::command));
    user.finger(tabulator, false);
    EXPECT_EQ(user.keysUntilEnd(), "+37 +55^4 -55 -37 -23");
}

} // namespace
} // namespace quillory::test
