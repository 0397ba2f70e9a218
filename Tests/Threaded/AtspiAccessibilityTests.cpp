// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "FakeAccessibilityBus.h"
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/QtMainQueue.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace quillory::test;
using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned active = 1;
constexpr unsigned defunct = 6;
constexpr unsigned editable = 7;
constexpr unsigned focusable = 11;
constexpr unsigned multiLine = 17;
constexpr unsigned frameRole = 23;
constexpr unsigned panelRole = 39;
constexpr unsigned passwordRole = 40;
constexpr unsigned entryRole = 79;
constexpr unsigned pageRole = 95;
constexpr unsigned staticRole = 116;

template <class T> std::optional<T> read(const std::optional<AXUIElement> &element, QLatin1StringView name) {
    const auto value = element ? element->copyAttributeValue(name) : std::nullopt;
    const auto *found = value ? std::get_if<T>(&*value) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

struct AtspiAccessibility : testing::Test {
    FakeAccessibilityBus bus;
    std::string window = bus.add(bus.root, {.role = frameRole, .name = "Chat", .states = {active, 25, 30}});
    std::string field = bus.add(window, {.role = entryRole,
                                         .name = "Message",
                                         .text = "helo",
                                         .states = {editable, focusable, multiLine, 25, 30},
                                         .attributes = {{"placeholder-text", "Type here"}}});
    desktop::QtMainQueue queue;
    std::unique_ptr<desktop::AtspiAccessibility> accessibility;
    std::optional<desktop::ActiveWindow> activeWindow;

    // The application lives in this process: another process is named as the one not to be asked.
    void start(qint32 ownPid = 1) {
        accessibility = std::make_unique<desktop::AtspiAccessibility>(
            queue, desktop::AtspiAccessibility::Options{.activeWindow = [this] { return activeWindow; },
                                                        .sessionBusAddress = bus.address(),
                                                        .ownPid = ownPid});
    }
    std::optional<AXUIElement> focused() {
        return read<AXUIElement>(accessibility->createSystemWide(), axAttribute::focusedUIElement);
    }
    std::optional<QString> focusedValue() { return read<QString>(focused(), axAttribute::value); }
    bool waitForValue(const char *text) {
        return waitUntil([&] { return focusedValue() == QString::fromUtf8(text); });
    }
};

TEST_F(AtspiAccessibility, AnswersATickFromOneRoundTrip) {
    bus.focus(field, false);
    start();
    ASSERT_TRUE(waitForValue("helo")) << "what had the focus before we started was not found";
    EXPECT_EQ(focused()->pid(), getpid());
    EXPECT_EQ(read<QString>(focused(), axAttribute::role), axRole::textArea);
    EXPECT_EQ(read<double>(focused(), axAttribute::numberOfCharacters), 4);
    EXPECT_EQ(read<QString>(focused(), axAttribute::placeholderValue), QStringLiteral("Type here"));
    EXPECT_EQ(read<Point>(focused(), axAttribute::position), (Point{10, 20}));
    EXPECT_EQ(read<QString>(read<AXUIElement>(focused(), axAttribute::window), axAttribute::title),
              QStringLiteral("Chat"));
    const auto before = accessibility->traffic();
    constexpr int ticks = 10;
    for (int i = 0; i < ticks; ++i) {
        const auto element = focused();
        for (const auto name : {axAttribute::role, axAttribute::numberOfCharacters, axAttribute::value,
                                axAttribute::position, axAttribute::size, axAttribute::placeholderValue}) {
            EXPECT_TRUE(element->copyAttributeValue(name)) << name.data();
        }
    }
    EXPECT_LE(accessibility->traffic().roundTrips - before.roundTrips, ticks);
}

TEST_F(AtspiAccessibility, WritesAndReadsBackAfresh) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    const auto element = *focused();
    EXPECT_TRUE(element.isAttributeSettable(axAttribute::value));
    const auto text = QStringLiteral("\U0001F600\U0001F44D ok");
    EXPECT_TRUE(element.setAttributeValue(axAttribute::value, text));
    EXPECT_EQ(read<QString>(element, axAttribute::value), text);
    EXPECT_TRUE(element.setAttributeValue(axAttribute::selectedTextRange, AXRange{text.size(), 0}));
    EXPECT_EQ(bus.caret(), 5) << "the bus counts code points";
    // More than is copied along with every tick.
    const QString longText(25'000, QLatin1Char('x'));
    EXPECT_TRUE(element.setAttributeValue(axAttribute::value, longText));
    EXPECT_TRUE(waitUntil([&] { return focusedValue() == longText; }));
}

TEST_F(AtspiAccessibility, LeavesATextAloneThatBecameAPassword) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.change(field, [](FakeElement &element) { element.role = passwordRole; });
    ASSERT_TRUE(waitUntil([&] { return !focusedValue(); }));
    const int asked = bus.callsOf("GetText");
    EXPECT_FALSE(read<double>(focused(), axAttribute::numberOfCharacters));
    EXPECT_EQ(bus.callsOf("GetText"), asked);
}

// The application says all the time that its window is active, or nothing at all.
TEST_F(AtspiAccessibility, NamesNothingInAWindowThatTheDesktopCallsInactive) {
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
            bus.hang(false);
            bus.change(field, [&](FakeElement &element) { element.text = text; });
            activeWindow = {100, shown};
            ASSERT_TRUE(waitForValue(text.c_str()));
            bus.hang(hangs);
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
    EXPECT_EQ(read<double>(focused(), axAttribute::numberOfCharacters), 21);
    bus.change(last, [](FakeElement &element) { element.text = "end \uFFFC"; });
    const auto added = bus.add(last, {.role = 88, .text = "link"});
    EXPECT_TRUE(waitForValue("Hi \U0001F600 bold\nthere\n\nend link"));
}

TEST_F(AtspiAccessibility, OutlivesAnApplicationThatHangs) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.hang(true);
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
    bus.hang(false);
    EXPECT_TRUE(waitForValue("awake"));
}

TEST_F(AtspiAccessibility, FindsTheFocusBesideAnApplicationThatHangs) {
    bus.addHungApplication();
    bus.focus(field, false);
    start();
    EXPECT_TRUE(waitUntil([&] { return focusedValue() == QStringLiteral("helo"); }, 4'000));
}

TEST_F(AtspiAccessibility, QuitsAtOnceWhateverHangs) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("bus")).toStdString();
    const int mute = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(name.sun_path, sizeof name.sun_path - 1);
    ASSERT_EQ(bind(mute, reinterpret_cast<sockaddr *>(&name), sizeof name), 0);
    ASSERT_EQ(listen(mute, 1), 0);
    const desktop::AtspiAccessibility::Options muteBus{.sessionBusAddress = "unix:path=" + path};
    const auto begin = millisecondsNow();
    EXPECT_FALSE(desktop::AtspiAccessibility(queue, muteBus).isProcessTrusted());
    EXPECT_LT(millisecondsNow() - begin, 1'000);
    close(mute);
}

TEST_F(AtspiAccessibility, ForgetsWhatIsGone) {
    const auto other = bus.add(window, {.role = entryRole, .text = "other", .states = {editable, focusable, 25, 30}});
    bus.focus(other);
    start();
    ASSERT_TRUE(waitForValue("other"));
    const auto removed = *focused();
    // Firefox still names the parent of what it has removed.
    bus.change(other, [](FakeElement &changed) { changed.states.push_back(defunct); });
    EXPECT_TRUE(waitUntil([&] { return !focused(); }));
    for (const auto name : {axAttribute::parent, axAttribute::window, axAttribute::position}) {
        EXPECT_FALSE(removed.copyAttributeValue(name)) << name.data();
    }
    bus.remove(other);
    bus.focus(field);
    ASSERT_TRUE(waitForValue("helo"));
    const auto element = *focused();
    bus.quit();
    EXPECT_TRUE(waitUntil([&] { return !focused(); }));
    EXPECT_FALSE(element.copyAttributeValue(axAttribute::value));
    EXPECT_THAT(element.copySubtree({21, 2500}, AXFreshness::now()), IsEmpty());
}
TEST_F(AtspiAccessibility, TakesAnswersOfWrongTypesForNone) {
    bus.focus(field);
    start();
    ASSERT_TRUE(waitForValue("helo"));
    bus.setAnswer([](const std::string &, const std::string &member, sd_bus_message *reply) {
        return member != "GetState" && sd_bus_message_append(reply, "a{sv}", 1, "x", "i", 7) >= 0;
    });
    EXPECT_TRUE(waitUntil([&] { return !focusedValue(); }));
    for (const auto name : {axAttribute::value, axAttribute::position, axAttribute::size, axAttribute::children}) {
        EXPECT_FALSE(focused()->copyAttributeValue(name)) << name.data();
    }
    EXPECT_THAT(focused()->copySubtree({21, 2500}, AXFreshness::now()), testing::SizeIs(1));
}

TEST_F(AtspiAccessibility, NeverAsksOurOwnWindowsAnything) {
    start(getpid());
    ASSERT_TRUE(waitUntil([&] {
        bus.focus(field);
        return focused().has_value();
    }));
    EXPECT_EQ(focused()->pid(), getpid());
    EXPECT_FALSE(focusedValue());
    EXPECT_FALSE(focused()->copyAttributeValue(axAttribute::parent));
    EXPECT_EQ(bus.callsOf("GetRole") + bus.callsOf("GetState") + bus.callsOf("Get"), 0);
}

TEST_F(AtspiAccessibility, IsTrustedWhileTheServiceIsOn) {
    start();
    EXPECT_TRUE(waitUntil([&] { return accessibility->isProcessTrusted(); }));
    bus.setEnabled(false);
    EXPECT_TRUE(waitUntil([&] { return !accessibility->isProcessTrusted(); }));
    bus.setEnabled(true);
    EXPECT_TRUE(waitUntil([&] { return accessibility->isProcessTrusted(); }));
    const desktop::AtspiAccessibility::Options nowhere{.sessionBusAddress = "unix:path=/nonexistent/bus"};
    EXPECT_FALSE(desktop::AtspiAccessibility(queue, nowhere).isProcessTrusted());
}

// Trees for the bulk read, and what a plain walk would meet in them.
struct BulkRead : AtspiAccessibility {
    std::string page = bus.add(window, {.role = pageRole});
    std::mt19937 random{7};

    void grow(const std::string &parent, int depth) {
        const int count = static_cast<int>(random() % 5);
        for (int i = 0; i < count && depth < 6; ++i) {
            const std::string text = "text " + std::to_string(random() % 1000);
            const auto kind = random() % 4;
            const auto child = bus.add(parent, kind < 2    ? FakeElement{.role = staticRole, .text = text}
                                               : kind == 2 ? FakeElement{.role = staticRole}
                                                           : FakeElement{.role = panelRole});
            if (kind == 2) {
                // Formatted: a static around another, or around a picture.
                const bool isPicture = random() % 4 == 0;
                bus.change(child, [&](FakeElement &element) { element.text = isPicture ? "\uFFFC" : text; });
                bus.add(child, isPicture ? FakeElement{.role = 27} : FakeElement{.role = staticRole, .text = text});
            }
            if (kind == 3) {
                grow(child, depth + 1);
            }
        }
    }
    void walk(const std::string &path, int depth, AXSubtreeLimits limits, std::vector<std::string> &lines) {
        if (depth > limits.maxDepth || std::ssize(lines) >= limits.maxNodes) {
            return;
        }
        const auto element = bus.element(path);
        lines.push_back(std::to_string(depth) + " " + (element.children.empty() ? element.text : ""));
        for (const auto &child : element.children) {
            walk(child, depth + 1, limits, lines);
        }
    }
    void expectWalk(AXSubtreeLimits limits, AXFreshness freshness = AXFreshness::now()) {
        std::vector<std::string> expected;
        walk(page, 0, limits, expected);
        EXPECT_EQ(readPage(limits, freshness), expected) << "limits " << limits.maxDepth << " " << limits.maxNodes;
    }
    // The application tells of no change here, so the page itself is asked unless it is said otherwise.
    std::vector<std::string> readPage(AXSubtreeLimits limits, AXFreshness freshness = AXFreshness::now()) {
        bus.focus(page);
        std::vector<AXSubtreeNode> nodes;
        waitUntil([&] {
            const auto element = focused();
            nodes = element ? element->copySubtree(limits, freshness) : std::vector<AXSubtreeNode>();
            return !nodes.empty();
        });
        std::vector<std::string> lines;
        for (const auto &node : nodes) {
            lines.push_back(std::to_string(node.depth) + " " + node.value.value_or(QString()).toStdString());
            EXPECT_EQ(!node.value.value_or(QString()).trimmed().isEmpty(), node.frame.has_value());
        }
        return lines;
    }
};

TEST_F(BulkRead, GivesWhatAWalkWouldMeetHoweverItFetches) {
    using Search = FakeAccessibilityBus::Search;
    for (int i = 0; i < 12; ++i) {
        grow(page, 1);
    }
    bus.setToolkit("Chromium");
    start();
    for (const auto search : {Search::whole, Search::wrong, Search::none}) {
        bus.setSearch(search);
        for (const AXSubtreeLimits limits :
             {AXSubtreeLimits{21, 2500}, {21, 40}, {2, 2500}, {3, 17}, {0, 5}, {21, 1}}) {
            expectWalk(limits);
        }
    }
}

TEST_F(BulkRead, SeesEveryChangeSinceTheLastRead) {
    const auto row = bus.add(page, {.role = 85});
    for (const char *text : {"Hi", " ", "12:45"}) {
        bus.add(row, {.role = staticRole, .text = text});
    }
    const auto alone = bus.add(bus.add(page, {.role = 85}), {.role = staticRole, .text = "alone"});
    bus.setToolkit("Chromium");
    bus.setSearch(FakeAccessibilityBus::Search::whole);
    bus.change(row, [](FakeElement &element) { element.text = "Hi 12:45"; });
    start();
    constexpr AXSubtreeLimits limits{21, 2500};
    expectWalk(limits);
    const int asked = bus.callsOf("GetChildren");
    expectWalk(limits);
    EXPECT_EQ(bus.callsOf("GetChildren"), asked) << "an unchanged page was walked again";
    bus.change(alone, [](FakeElement &element) { element.text = "changed"; });
    expectWalk(limits);
    bus.change(bus.element(row).children.front(), [](FakeElement &element) { element.text = "Ho"; });
    bus.change(row, [](FakeElement &element) { element.text = "Ho 12:45"; });
    expectWalk(limits);
    bus.add(row, {.role = staticRole, .text = "read"});
    expectWalk(limits);
    for (int i = 0; i < 12; ++i) {
        grow(page, 3);
        const auto children = bus.element(page).children;
        const auto &chosen = children[random() % children.size()];
        i % 3 == 0 ? bus.remove(chosen) : grow(chosen, 4);
        expectWalk(limits);
    }
}

TEST_F(BulkRead, EndsOnCyclesAndOnAbsurdNumbersOfChildren) {
    const auto inner = bus.add(page, {.role = panelRole});
    bus.change(inner, [&](FakeElement &element) { element.children = {page, inner, inner}; });
    for (int i = 0; i < 10'000; ++i) {
        bus.add(page, {.role = panelRole});
    }
    start();
    EXPECT_THAT(readPage({21, 300}, {}), testing::SizeIs(300));
    // The search for the focus looks at some of them, too.
    EXPECT_LT(bus.callsOf("GetChildren"), 5'000) << "far more was fetched than the limits let through";
}

// A whole climb and a whole read take longer than is waited for in one go.
TEST_F(BulkRead, GoesOnWhereASlowApplicationMadeItStop) {
    for (int i = 0; i < 25; ++i) {
        page = bus.add(page, {.role = panelRole});
    }
    for (int i = 0; i < 100; ++i) {
        bus.add(page, {.role = staticRole, .text = "text " + std::to_string(i)});
    }
    bus.setAnswer([](const std::string &, const std::string &member, sd_bus_message *) {
        const bool isReading = member == "GetChildren" || member == "GetText";
        const int milliseconds = member == "GetAttributes" ? 20 : isReading ? 3 : 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return false;
    });
    bus.setSearch(FakeAccessibilityBus::Search::whole);
    for (const char *toolkit : {"Fake", "Chromium"}) {
        bus.setToolkit(toolkit);
        start();
        expectWalk({21, 2500}, {});
    }
}

TEST_F(BulkRead, TakesFoldedTextApart) {
    bus.setToolkit("Gecko");
    const auto row = bus.add(page, {.role = 85, .text = "Hi there \uFFFC12:45"});
    bus.add(row, {.role = 88, .text = "link"});
    const auto secret = bus.add(page, {.role = passwordRole, .text = "secret"});
    std::atomic<bool> isTold = false;
    // Where a text stands is not known when it is asked for the first time.
    std::map<std::string, int> asked;
    bus.setAnswer([&](const std::string &path, const std::string &member, sd_bus_message *reply) {
        isTold = isTold || (path == secret && member == "GetText");
        if (member == "GetAttributeRun") {
            return sd_bus_message_append(reply, "a{ss}ii", 0, 0, 99) >= 0;
        }
        const bool isPlaced = member == "GetRangeExtents" && ++asked[path] > 4;
        return member == "GetRangeExtents" && sd_bus_message_append(reply, "iiii", isPlaced, 2, 3 * isPlaced, 0) >= 0;
    });
    start();
    EXPECT_THAT(readPage({21, 2500}), ElementsAre("0 ", "1 ", "2 Hi there ", "2 ", "3 link", "2 12:45", "1 "));
    EXPECT_FALSE(isTold);
    EXPECT_THAT(focused()->copySubtree({21, 2500}),
                testing::Contains(testing::Field(&AXSubtreeNode::frame, Rect{1, 2, 3, 0})).Times(3));
}

// A chat whose last message is looked at.
struct PageMirror : AtspiAccessibility {
    std::string page = bus.add(window, {.role = pageRole});
    std::string message = bus.add(page, {.role = staticRole, .text = "first"});
    std::optional<AXUIElement> element;

    void SetUp() override {
        bus.focus(page);
        start();
        ASSERT_TRUE(waitUntil([&] { return (element = focused()).has_value(); }));
        ASSERT_TRUE(waitUntil([&] { return ask() == "first"; }));
    }
    std::string ask(AXFreshness freshness = {}) {
        const auto nodes = element->copySubtree({21, 2500}, freshness);
        return nodes.empty() ? "-" : nodes.back().value.value_or(QString()).toStdString();
    }
    void say(const char *text) {
        bus.change(message, [&](FakeElement &changed) { changed.text = text; });
    }
    int readsWhile(int milliseconds, const std::function<void()> &deed) {
        const int before = bus.callsOf("GetText");
        for (const auto end = millisecondsNow() + milliseconds; millisecondsNow() < end;) {
            deed();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return bus.callsOf("GetText") - before;
    }
};

TEST_F(PageMirror, AnswersForAnUnchangedPage) {
    const int before = bus.calls();
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(ask(), "first");
    }
    EXPECT_EQ(bus.calls(), before) << "an unchanged page was asked";
    say("changed unheard");
    EXPECT_EQ(ask(AXFreshness::now()), "changed unheard");
}

TEST_F(PageMirror, FollowsWhatItIsToldAndFindsTheRest) {
    // Of a part of the application that is not in the page nothing is to be known.
    say("second");
    bus.tell(field, "TextChanged");
    EXPECT_EQ(readsWhile(300, [&] { EXPECT_EQ(ask(), "first"); }), 0);
    for (const char *event : {"TextChanged", "ChildrenChanged", "PropertyChange"}) {
        say(event);
        bus.tell(event == std::string_view("ChildrenChanged") ? page : message, event);
        EXPECT_TRUE(waitUntil([&] { return ask() == event; }, 1'000)) << event;
    }
    say("unheard");
    EXPECT_TRUE(waitUntil([&] { return ask() == "unheard"; }, 5'000)) << "a lost signal does not heal";
    bus.restartRegistry();
    EXPECT_TRUE(waitUntil([&] { return bus.hearsOf("TextChanged"); })) << "not registered again";
    // While nobody asks, nothing is read.
    waitUntil([] { return false; }, 2'200);
    EXPECT_EQ(readsWhile(500, [&] { bus.tell(message, "TextChanged"); }), 0);
    say("asked again");
    EXPECT_TRUE(waitUntil([&] { return ask() == "asked again"; }, 1'000));
}

TEST_F(PageMirror, ReadsAPageThatChangesAllTheTimeAtABoundedRate) {
    int asked = 0;
    int answered = 0;
    std::int64_t longest = 0;
    const int reads = readsWhile(2'000, [&] {
        bus.tell(message, "TextChanged");
        const auto begin = millisecondsNow();
        ++asked;
        answered += ask() == "first" ? 1 : 0;
        longest = std::max<std::int64_t>(longest, millisecondsNow() - begin);
    });
    EXPECT_GE(reads, 5);
    EXPECT_LE(reads, 2 * 21) << "each change was read";
    EXPECT_EQ(answered, asked);
}

TEST_F(PageMirror, OfAHungApplicationIsKnownOnlyForAMoment) {
    bus.hang(true);
    EXPECT_EQ(ask(AXFreshness::now()), "-");
    EXPECT_TRUE(waitUntil([&] { return ask() == "-"; }, 5'000));
    const auto begin = millisecondsNow();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(ask(), "-");
    }
    EXPECT_LT(millisecondsNow() - begin, 400);
    say("awake");
    bus.hang(false);
    EXPECT_TRUE(waitUntil([&] { return ask() == "awake"; }, 5'000));
}

} // namespace
