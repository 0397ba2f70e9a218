// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the conversation of a chat in each browser in two ways, in turns: in bulk as the program does when it asks the
// page itself, and by walking it with libatspi, one blocking call for each attribute. Before that it asks a long chat
// every 0.4 s, as the program does, of a page to which a message comes every second and of one that does not change.
#include "BrowserPage.h"
#include "ClockTime.h"
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "RealDesktop/RealDesktop.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// Its headers use GLib's macros, which do not pass this project's warnings.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#include <atspi/atspi.h>
#pragma GCC diagnostic pop

namespace {

using Clock = std::chrono::steady_clock;
using namespace quillory;

constexpr int shortChat = 245;
// More than the limit of 2,500 elements has room for.
constexpr int longChat = 900;
constexpr int rounds = 9;
constexpr int questions = 30;
constexpr platform::AXSubtreeLimits limits{.maxDepth = 21, .maxNodes = 2500};

struct Walked {
    int nodes = 0;
    int lines = 0;
};

// Chromium has static texts, Firefox stretches of style in the text of a block.
void readText(AtspiText *text, bool isFolded, Walked &walked) {
    gchar *content = atspi_text_get_text(text, 0, -1, nullptr);
    const auto size = content != nullptr ? g_utf8_strlen(content, -1) : 0;
    for (gint from = 0; isFolded && from < size;) {
        gint start = 0;
        gint end = 0;
        g_hash_table_unref(atspi_text_get_attribute_run(text, from, FALSE, &start, &end, nullptr));
        const bool isChild = g_utf8_get_char(g_utf8_offset_to_pointer(content, from)) == 0xFFFC;
        if (!isChild) {
            g_free(atspi_text_get_range_extents(text, from, end, ATSPI_COORD_TYPE_SCREEN, nullptr));
            ++walked.nodes;
            ++walked.lines;
        }
        from = isChild ? from + 1 : std::max(end, from + 1);
    }
    g_free(content);
}

// The roles, texts and frames that the program needs, each read when it is needed.
void walk(AtspiAccessible *element, int depth, bool isFolded, Walked &walked) {
    if (walked.nodes >= limits.maxNodes || depth > limits.maxDepth) {
        return;
    }
    ++walked.nodes;
    const bool isStatic = atspi_accessible_get_role(element, nullptr) == ATSPI_ROLE_STATIC;
    if (isStatic || isFolded) {
        if (AtspiText *text = atspi_accessible_get_text_iface(element)) {
            readText(text, isFolded, walked);
            g_object_unref(text);
        }
    }
    if (isStatic) {
        ++walked.lines;
        if (AtspiComponent *component = atspi_accessible_get_component_iface(element)) {
            g_free(atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr));
            g_object_unref(component);
        }
    }
    const int count = atspi_accessible_get_child_count(element, nullptr);
    for (int i = 0; i < count; ++i) {
        if (AtspiAccessible *child = atspi_accessible_get_child_at_index(element, i, nullptr)) {
            walk(child, depth + 1, isFolded, walked);
            g_object_unref(child);
        }
    }
}

AtspiAccessible *findPage(AtspiAccessible *element, int depth) {
    if (atspi_accessible_get_role(element, nullptr) == ATSPI_ROLE_DOCUMENT_WEB) {
        return ATSPI_ACCESSIBLE(g_object_ref(element));
    }
    AtspiAccessible *page = nullptr;
    const int count = depth < 30 ? atspi_accessible_get_child_count(element, nullptr) : 0;
    for (int i = 0; i < count && page == nullptr; ++i) {
        if (AtspiAccessible *child = atspi_accessible_get_child_at_index(element, i, nullptr)) {
            page = findPage(child, depth + 1);
            g_object_unref(child);
        }
    }
    return page;
}

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

using platform::AXFreshness;
using Browser = bench::BrowserPage::Browser;

// question: the longest that the main thread stood still for one of the questions every 0.4 s, 0 if there were none.
void compare(const platform::AXUIElement &page, AtspiAccessible *samePage, bool isFolded, double question) {
    std::vector<double> inBulk;
    std::vector<double> blocking;
    std::size_t nodes = 0;
    Walked walked;
    for (int round = 0; round < rounds; ++round) {
        auto start = Clock::now();
        const auto read = page.copySubtree(limits, AXFreshness::now());
        inBulk.push_back(millisecondsSince(start));
        nodes = std::max(nodes, read.size());
        walked = {};
        // Clears what libatspi remembers, so that every attribute costs a call.
        atspi_accessible_clear_cache(samePage);
        start = Clock::now();
        walk(samePage, 0, isFolded, walked);
        blocking.push_back(millisecondsSince(start));
        // What the main thread may wait for in one second is bounded.
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    std::printf("elements and lines: %zu in bulk, %d walked, %d of them lines\n", nodes, walked.nodes, walked.lines);
    std::printf("libatspi, one blocking call per attribute: median %.1f ms\n", median(blocking));
    std::printf("in bulk, asked of the page itself:         median %.1f ms, worst %.1f ms, first %.1f ms\n",
                median(inBulk), *std::max_element(inBulk.begin(), inBulk.end()), inBulk.front());
    std::printf("ratio: %.1f\n", median(blocking) / median(inBulk));
    if (question > 0) {
        std::printf("ratio to the dearest question every 0.4 s: %.0f\n", median(blocking) / question);
    }
}

// Between the questions the program ticks. The longest that a question took, in milliseconds.
double askRegularly(platform::Accessibility &accessibility, const platform::AXUIElement &page, const char *which) {
    (void)page.copySubtree(limits);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const double cpuBefore = bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID);
    const auto begin = Clock::now();
    std::vector<double> stalls;
    double worstTick = 0;
    int answered = 0;
    for (int i = 0; i < 4 * questions; ++i) {
        std::this_thread::sleep_until(begin + i * std::chrono::milliseconds(100));
        auto start = Clock::now();
        (void)accessibility.createSystemWide().copyAttributeValue(platform::AXAttribute::focusedUIElement);
        worstTick = std::max(worstTick, millisecondsSince(start));
        if (i % 4 == 0) {
            start = Clock::now();
            answered += page.copySubtree(limits).empty() ? 0 : 1;
            stalls.push_back(millisecondsSince(start));
        }
    }
    const double worst = *std::max_element(stalls.begin(), stalls.end());
    std::printf("every 0.4 s, %s: stall median %.2f ms, worst %.2f ms, %d of %d answered; "
                "tick's question worst %.2f ms; CPU %.2f %% of one core\n",
                which, median(stalls), worst, answered, questions, worstTick,
                100 * (bench::milliseconds(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore) / millisecondsSince(begin));
    return worst;
}

platform::AXUIElement pageOf(bench::BrowserPage &browser, platform::Accessibility &accessibility) {
    const auto page = bench::pageAround(browser.waitForBox(accessibility));
    if (!page) {
        throw std::runtime_error("no page found");
    }
    return *page;
}

// libatspi comes last: it knows only what was there when it was initialised, and waits for ever for what has changed
// since.
void measure(Browser kind, int bubbles) {
    const char *name = kind == Browser::firefox ? "Firefox" : "Chromium";
    std::printf("%s, %d messages\n", name, bubbles);
    platform::desktop::QtMainQueue mainQueue;
    platform::desktop::AtspiAccessibility accessibility(mainQueue);
    double question = 0;
    if (bubbles == longChat) {
        bench::BrowserPage changing(kind, {bubbles, 1000});
        question = askRegularly(accessibility, pageOf(changing, accessibility), "a message a second");
    }
    bench::BrowserPage browser(kind, {bubbles});
    const auto page = pageOf(browser, accessibility);
    if (bubbles == longChat) {
        question = std::max(question, askRegularly(accessibility, page, "unchanged"));
    }
    atspi_init();
    AtspiAccessible *everything = atspi_get_desktop(0);
    AtspiAccessible *samePage = findPage(everything, 0);
    if (samePage == nullptr) {
        throw std::runtime_error("libatspi found no page");
    }
    atspi_accessible_set_cache_mask(everything, ATSPI_CACHE_NONE);
    compare(page, samePage, kind == Browser::firefox, question);
}

} // namespace

int main(int argc, char **argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0);
    for (const auto kind : {Browser::chromium, Browser::firefox}) {
        for (const int bubbles : {shortChat, longChat}) {
            // Each in a process of its own, because libatspi serves one browser only.
            const pid_t child = fork();
            if (child == 0) {
                const test::RealDesktop desktop;
                const QCoreApplication application(argc, argv);
                measure(kind, bubbles);
                return 0;
            }
            int status = 0;
            if (waitpid(child, &status, 0) != child || status != 0) {
                return 1;
            }
        }
    }
    return 0;
}
