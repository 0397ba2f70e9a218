// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "AccessibilityStory.h"

#include <chrono>
#include <random>

namespace {

using namespace quillory::test;
using namespace quillory::test::atspi;
using testing::ElementsAre;
using testing::IsEmpty;

// Random trees, and what a plain walk would meet in them.
struct BulkRead : AtspiAccessibility {
    std::string page = bus.add(window, {.role = pageRole});
    std::mt19937 random{7};

    void grow(const std::string &parent, int depth) {
        const int count = static_cast<int>(random() % 5);
        for (int i = 0; i < count && depth < 6; ++i) {
            const std::string text = "text " + std::to_string(random() % 1000);
            const auto kind = random() % 4;
            // Formatted: a static around another, or around a picture.
            const bool isFormatted = kind == 2;
            const bool isPicture = isFormatted && random() % 4 == 0;
            const auto child = bus.add(parent, {.role = kind == 3 ? panelRole : staticRole,
                                                .text = kind == 3   ? ""
                                                        : isPicture ? "\uFFFC"
                                                                    : text});
            if (isFormatted) {
                bus.add(child, {.role = isPicture ? 27 : staticRole, .text = isPicture ? "" : text});
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
    // The application reports no change here, so the page itself is asked by default.
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

TEST_F(BulkRead, GivesWhatAPlainWalkWouldMeet) {
    using Search = FakeAccessibilityBus::Search;
    for (int i = 0; i < 12; ++i) {
        grow(page, 1);
    }
    bus.toolkit = "Chromium";
    start();
    for (const auto search : {Search::whole, Search::wrong, Search::none}) {
        bus.search = search;
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
    bus.toolkit = "Chromium";
    bus.search = FakeAccessibilityBus::Search::whole;
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

// A whole climb and a whole read take longer than anybody waits in one go.
TEST_F(BulkRead, GoesOnAfterASlowApplicationMadeItStop) {
    for (int i = 0; i < 25; ++i) {
        page = bus.add(page, {.role = panelRole});
    }
    for (int i = 0; i < 100; ++i) {
        bus.add(page, {.role = staticRole, .text = "text " + std::to_string(i)});
    }
    bus.setAnswer([](const std::string &, const std::string &member, sd_bus_message *) {
        const bool isReading = member == "GetChildren" || member == "GetText";
        std::this_thread::sleep_for(std::chrono::milliseconds(member == "GetAttributes" ? 20 : isReading ? 3 : 0));
        return false;
    });
    bus.search = FakeAccessibilityBus::Search::whole;
    for (const char *toolkit : {"Fake", "Chromium"}) {
        bus.toolkit = toolkit;
        start();
        expectWalk({21, 2500}, {});
    }
}

TEST_F(BulkRead, TakesFoldedTextApart) {
    bus.toolkit = "Gecko";
    const auto row = bus.add(page, {.role = 85, .text = "Hi there \uFFFC12:45"});
    bus.add(row, {.role = 88, .text = "link"});
    const auto secret = bus.add(page, {.role = passwordRole, .text = "secret"});
    std::atomic<bool> isTold = false;
    // The place of a text is not known the first few times.
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
    EXPECT_TRUE(waitUntil([&] {
        const auto isPlaced = testing::Field(&AXSubtreeNode::frame, Rect{1, 2, 3, 0});
        return testing::Value(focused()->copySubtree({21, 2500}), testing::Contains(isPlaced).Times(3));
    }));
}

// A chat and its last message.
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
    int readsWhile(int milliseconds, const std::function<void()> &act) {
        const int before = bus.callsOf("GetText");
        for (const auto end = millisecondsNow() + milliseconds; millisecondsNow() < end;) {
            act();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return bus.callsOf("GetText") - before;
    }
};

TEST_F(PageMirror, FollowsReportedChangesAndFindsTheOthers) {
    // Changes outside the page do not count.
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
    bus.registryMustRestart = true;
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
    const int reads = readsWhile(2'000, [&] {
        bus.tell(message, "TextChanged");
        ++asked;
        answered += ask() == "first" ? 1 : 0;
    });
    EXPECT_GE(reads, 5);
    EXPECT_LE(reads, 2 * 21) << "each change was read";
    EXPECT_EQ(answered, asked);
}

TEST_F(PageMirror, DropsThePageOfAHungApplication) {
    bus.hangs = true;
    EXPECT_EQ(ask(AXFreshness::now()), "-");
    EXPECT_TRUE(waitUntil([&] { return ask() == "-"; }, 5'000));
    const auto begin = millisecondsNow();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(ask(), "-");
    }
    EXPECT_LT(millisecondsNow() - begin, 400);
    say("awake");
    bus.hangs = false;
    EXPECT_TRUE(waitUntil([&] { return ask() == "awake"; }, 5'000));
}

} // namespace
