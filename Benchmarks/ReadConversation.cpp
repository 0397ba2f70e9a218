// SPDX-FileCopyrightText: 2026 The Quillory developers
// Reads the conversation of a page in Chromium in two ways, in turns: in bulk as the program does, and by walking it
// with libatspi, one blocking call for each attribute. Prints the medians and their ratio.
#include "BrowserPage.h"
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/QtMainQueue.h"
#include "RealDesktop/RealDesktop.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <vector>

// Its headers use GLib's macros, which do not pass this project's warnings.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#include <atspi/atspi.h>
#pragma GCC diagnostic pop

namespace {

using Clock = std::chrono::steady_clock;
using namespace quillory;

constexpr int bubbles = 245;
constexpr int rounds = 15;
constexpr platform::AXSubtreeLimits limits{.maxDepth = 21, .maxNodes = 2500};

struct Walked {
    int nodes = 0;
    int lines = 0;
};

// The roles, texts and frames that the program needs, each asked for when it is needed.
void walk(AtspiAccessible *element, int depth, Walked &walked) {
    if (walked.nodes >= limits.maxNodes || depth > limits.maxDepth) {
        return;
    }
    ++walked.nodes;
    if (atspi_accessible_get_role(element, nullptr) == ATSPI_ROLE_STATIC) {
        if (AtspiText *text = atspi_accessible_get_text_iface(element)) {
            g_free(atspi_text_get_text(text, 0, -1, nullptr));
            g_object_unref(text);
            ++walked.lines;
        }
        if (AtspiComponent *component = atspi_accessible_get_component_iface(element)) {
            g_free(atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr));
            g_object_unref(component);
        }
    }
    const int count = atspi_accessible_get_child_count(element, nullptr);
    for (int i = 0; i < count; ++i) {
        if (AtspiAccessible *child = atspi_accessible_get_child_at_index(element, i, nullptr)) {
            walk(child, depth + 1, walked);
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

void compare(const platform::AXUIElement &page, AtspiAccessible *samePage) {
    std::vector<double> inBulk;
    std::vector<double> blocking;
    std::size_t nodes = 0;
    Walked walked;
    for (int round = 0; round < rounds; ++round) {
        auto start = Clock::now();
        const auto read = page.copySubtree(limits);
        inBulk.push_back(millisecondsSince(start));
        nodes = std::max(nodes, read.size());
        walked = {};
        // What the library remembers is forgotten, so that every attribute is one call.
        atspi_accessible_clear_cache(samePage);
        start = Clock::now();
        walk(samePage, 0, walked);
        blocking.push_back(millisecondsSince(start));
    }
    std::printf("elements: %zu in bulk, %d walked, %d of them texts\n", nodes, walked.nodes, walked.lines);
    std::printf("libatspi, one blocking call per attribute: median %.1f ms\n", median(blocking));
    std::printf("in bulk, main thread stalled:              median %.1f ms, worst %.1f ms, first %.1f ms\n",
                median(inBulk), *std::max_element(inBulk.begin(), inBulk.end()), inBulk.front());
    std::printf("ratio: %.1f\n", median(blocking) / median(inBulk));
}

} // namespace

int main(int argc, char **argv) {
    const test::RealDesktop desktop;
    const QCoreApplication application(argc, argv);
    platform::desktop::QtMainQueue mainQueue;
    platform::desktop::AtspiAccessibility accessibility(mainQueue);
    const bool isFirefox = argc > 1 && std::string_view(argv[1]) == "firefox";
    bench::BrowserPage browser(isFirefox ? bench::BrowserPage::Browser::firefox : bench::BrowserPage::Browser::chromium,
                               {bubbles});
    const auto page = bench::pageAround(browser.waitForBox(accessibility));
    atspi_init();
    AtspiAccessible *everything = atspi_get_desktop(0);
    AtspiAccessible *samePage = findPage(everything, 0);
    if (!page || samePage == nullptr) {
        std::fprintf(stderr, "no page found\n");
        return 1;
    }
    atspi_accessible_set_cache_mask(everything, ATSPI_CACHE_NONE);
    compare(*page, samePage);
    return 0;
}
