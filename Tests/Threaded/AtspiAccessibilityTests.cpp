// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "AccessibilityStory.h"

#include <QTemporaryDir>

#include <chrono>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using namespace quillory::test;
using namespace quillory::test::atspi;
using testing::Each;
using testing::IsEmpty;

std::vector<bool> answersOf(const AXUIElement &element, std::initializer_list<AXAttribute> names) {
    std::vector<bool> answers;
    std::ranges::transform(names, std::back_inserter(answers),
                           [&](AXAttribute name) { return element.copyAttributeValue(name).has_value(); });
    return answers;
}

TEST_F(AtspiAccessibility, AnswersATickFromOneRoundTrip) {
    bus.focus(field, false);
    start();
    ASSERT_TRUE(waitForValue("helo")) << "what had the focus before we started was not found";
    EXPECT_EQ(focused()->pid(), getpid());
    EXPECT_EQ(read<QString>(focused(), AXAttribute::role), axRole::textArea);
    EXPECT_EQ(read<double>(focused(), AXAttribute::numberOfCharacters), 4);
    EXPECT_EQ(read<QString>(focused(), AXAttribute::placeholderValue), u"Type here"_s);
    EXPECT_EQ(read<Point>(focused(), AXAttribute::position), (Point{10, 20}));
    EXPECT_EQ(read<QString>(read<AXUIElement>(focused(), AXAttribute::window), AXAttribute::title), u"Chat"_s);
    const auto before = accessibility->traffic();
    constexpr int ticks = 10;
    for (int i = 0; i < ticks; ++i) {
        EXPECT_THAT(answersOf(*focused(), {AXAttribute::role, AXAttribute::numberOfCharacters, AXAttribute::value,
                                           AXAttribute::position, AXAttribute::size, AXAttribute::placeholderValue}),
                    Each(true));
    }
    EXPECT_LE(accessibility->traffic().roundTrips - before.roundTrips, ticks);
    const std::string longText(25'000, 'x'); // more than is copied along with every tick
    bus.change(field, [&](FakeElement &element) { element.text = longText; });
    EXPECT_TRUE(waitForValue(longText.c_str()));
}

TEST_F(AtspiAccessibility, StopsReadingAFieldThatBecameAPassword) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.change(field, [](FakeElement &element) { element.role = passwordRole; });
    ASSERT_TRUE(waitUntil([&] { return !focusedValue(); }));
    const int asked = bus.callsOf("GetText");
    EXPECT_FALSE(read<double>(focused(), AXAttribute::numberOfCharacters));
    EXPECT_EQ(bus.callsOf("GetText"), asked);
}

// The application says throughout that its window is active, or it says nothing at all.
TEST_F(AtspiAccessibility, GivesOutNothingInAWindowThatTheDesktopCallsInactive) {
    bus.focus(field);
    start();
    const qint32 inSandbox = 3;
    const auto processNamed = [&](std::optional<desktop::ActiveWindow> shownNow) {
        activeWindow = shownNow;
        const auto element = focused();
        return element ? element->pid() : 0;
    };
    for (const qint32 shown : {inSandbox, static_cast<qint32>(getpid())}) {
        for (const bool hangs : {false, true}) {
            const auto text = std::to_string(shown) + (hangs ? "hangs" : "answers");
            bus.hangs = false;
            bus.change(field, [&](FakeElement &element) { element.text = text; });
            activeWindow = {100, shown};
            ASSERT_TRUE(waitForValue(text.c_str()));
            bus.hangs = hangs;
            EXPECT_EQ(processNamed({}), getpid()) << text;
            EXPECT_EQ(processNamed({{100, shown}}), getpid()) << text;
            if (hangs || shown != inSandbox) {
                EXPECT_EQ(processNamed({{300, 1}}), 1) << text << ": our own window";
                EXPECT_EQ(processNamed({{200, 4}}), 0) << text;
                waitUntil([] { return false; }, 350);
                EXPECT_EQ(processNamed({{100, shown}}), hangs ? 0 : getpid()) << text << ": back again";
            }
        }
    }
}

TEST_F(AtspiAccessibility, PutsARichTextBoxTogether) {
    const auto box = bus.add(window, {.role = entryRole,
                                      .text = "\uFFFC\uFFFC\uFFFC",
                                      .states = {editable, focusable, multiLine, 25, 30},
                                      .attributes = {{"tag", "div"}}});
    const auto first = bus.add(box, {.role = 73, .text = "Hi \U0001F600\uFEFF \uFFFC\nthere"});
    bus.add(first, {.role = staticRole, .name = "Hi ", .text = "Hi "});
    const auto bold = bus.add(first, {.role = staticRole, .text = "bold"});
    bus.add(bold, {.role = staticRole, .text = "bold"});
    bus.add(box, {.role = 73, .text = "\n"});
    const auto last = bus.add(box, {.role = 73, .text = "end"});
    bus.focus(box);
    start();
    EXPECT_TRUE(waitForValue("Hi \U0001F600 bold\nthere\n\nend")) << focusedValue().value_or(QString()).toStdString();
    EXPECT_EQ(read<double>(focused(), AXAttribute::numberOfCharacters), 21);
    bus.change(last, [](FakeElement &element) { element.text = "end \uFFFC"; });
    const auto added = bus.add(last, {.role = 88, .text = "link"});
    EXPECT_TRUE(waitForValue("Hi \U0001F600 bold\nthere\n\nend link"));
}

TEST_F(AtspiAccessibility, OutlivesAnApplicationThatHangs) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.hangs = true;
    const auto begin = millisecondsNow();
    // Without a deadline of our own each of these waits would take 25 seconds.
    EXPECT_TRUE(waitUntil([&] { return !focusedValue(); }));
    for (int i = 0; i < 30; ++i) {
        (void)focusedValue();
        (void)focused()->copySubtree({21, 2500});
    }
    EXPECT_LT(millisecondsNow() - begin, 10'000);
    EXPECT_TRUE(focused()) << "the focus did not move";
    bus.change(field, [](FakeElement &element) { element.text = "awake"; });
    bus.hangs = false;
    EXPECT_TRUE(waitForValue("awake"));
}

TEST_F(AtspiAccessibility, FindsTheFocusBesideAnApplicationThatHangs) {
    bus.addHungApplication();
    bus.focus(field, false);
    start();
    EXPECT_TRUE(waitUntil([&] { return focusedValue() == u"helo"_s; }, 4'000));
}

TEST_F(AtspiAccessibility, QuitsAtOnceWhateverHangs) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(u"bus"_s).toStdString();
    const int mute = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(name.sun_path, sizeof name.sun_path - 1);
    ASSERT_EQ(bind(mute, reinterpret_cast<sockaddr *>(&name), sizeof name), 0);
    ASSERT_EQ(listen(mute, 1), 0);
    for (const std::string &address : {path, path + "-missing"}) {
        const desktop::AtspiAccessibility::Options options{.sessionBusAddress = "unix:path=" + address};
        const auto begin = millisecondsNow();
        EXPECT_FALSE(desktop::AtspiAccessibility(queue, options).isProcessTrusted());
        EXPECT_LT(millisecondsNow() - begin, 1'000);
    }
    close(mute);
}

TEST_F(AtspiAccessibility, ForgetsElementsThatAreGone) {
    const auto other = bus.add(window, {.role = entryRole, .text = "other", .states = {editable, focusable, 25, 30}});
    bus.focus(other);
    start();
    ASSERT_TRUE(waitForValue("other"));
    const auto removed = *focused();
    // Firefox still names the parent of what it has removed.
    bus.change(other, [](FakeElement &changed) { changed.states.push_back(defunct); });
    EXPECT_TRUE(waitUntil([&] { return !focused(); }));
    EXPECT_THAT(answersOf(removed, {AXAttribute::parent, AXAttribute::window, AXAttribute::position}), Each(false));
    bus.remove(other);
    bus.focus(field);
    ASSERT_TRUE(waitForValue("helo"));
    const auto element = *focused();
    bus.quit();
    EXPECT_TRUE(waitUntil([&] { return !focused(); }));
    EXPECT_FALSE(element.copyAttributeValue(AXAttribute::value));
    EXPECT_THAT(element.copySubtree({21, 2500}, AXFreshness::now()), IsEmpty());
}

TEST_F(AtspiAccessibility, TreatsAnswersOfWrongTypesAsAbsent) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.setAnswer([](const std::string &, const std::string &member, sd_bus_message *reply) {
        return member != "GetState" && sd_bus_message_append(reply, "a{sv}", 1, "x", "i", 7) >= 0;
    });
    EXPECT_TRUE(waitUntil([&] { return !focusedValue(); }));
    EXPECT_THAT(answersOf(*focused(), {AXAttribute::value, AXAttribute::position, AXAttribute::children}), Each(false));
    // A read that runs out of time gives nothing.
    EXPECT_TRUE(waitUntil([&] { return focused()->copySubtree({21, 2500}, AXFreshness::now()).size() == 1; }));
}

TEST_F(AtspiAccessibility, NeverAsksOurOwnWindowsAnything) {
    start(getpid());
    ASSERT_TRUE(waitUntil([&] {
        bus.focus(field);
        return focused().has_value();
    }));
    EXPECT_EQ(focused()->pid(), getpid());
    EXPECT_FALSE(focusedValue());
    EXPECT_FALSE(focused()->copyAttributeValue(AXAttribute::parent));
    EXPECT_EQ(bus.callsOf("GetRole") + bus.callsOf("GetState") + bus.callsOf("Get"), 0);
}

} // namespace
