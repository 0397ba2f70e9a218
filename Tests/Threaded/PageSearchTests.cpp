// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "AccessibilityStory.h"
#include "Platform/Linux/Accessibility/Bus/Message.h"
#include "Platform/Linux/Doctor/PageSearch.h"

#include <thread>

namespace quillory::test::atspi {

namespace {

using namespace platform::desktop::atspi;

struct PageSearch : testing::Test {
    FakeAccessibilityBus bus;
    std::string window = bus.add(bus.root, {.role = frameRole});
    std::string page = bus.add(window, {.role = pageRole});
    StopSignal stop;

    std::optional<PagesFacts> find() {
        Connection connection(bus.address(), stop);
        const auto soon = Clock::now() + std::chrono::seconds(5);
        const auto listed = connection.call(calls::children({registryName, rootPath}), soon).references(1);
        return desktop::findPages(connection, listed.value().at(0));
    }
};

TEST_F(PageSearch, GivesTheFieldsOfAPageButNothingThatLiesInThem) {
    const std::vector<unsigned> box{editable, focusable, multiLine};
    const std::string field = bus.add(page, {.role = entryRole, .states = box});
    bus.add(field, {.role = panelRole, .states = {editable}});
    bus.add(page, {.role = panelRole, .states = box});
    bus.add(page, {.role = entryRole, .states = box, .attributes = {{"xml-roles", "searchbox"}}});
    bus.add(page, {.role = passwordRole, .states = box});
    bus.add(page, {.role = entryRole});
    bus.add(window, {.role = entryRole, .states = box}); // the address bar
    const auto found = find();
    ASSERT_TRUE(found && found->isWhole && found->pages.size() == 1);
    std::vector<QString> roles;
    for (const FieldFacts &one : found->pages[0].fields) {
        roles.push_back(one.role);
    }
    EXPECT_THAT(roles, testing::UnorderedElementsAre(axRole::textArea, axRole::textArea, axRole::searchField,
                                                     axRole::secureTextField));
}

TEST_F(PageSearch, TellsASlowPageFromAHungOne) {
    for (int i = 0; i < 500; ++i) {
        bus.add(page, {.role = panelRole});
    }
    bus.setAnswer([](const std::string &, const std::string &, sd_bus_message *) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return false;
    });
    const auto found = find();
    EXPECT_TRUE(found && !found->isWhole);
    bus.setAnswer({});
    bus.hangs = true;
    EXPECT_FALSE(find());
    bus.hangs = false;
}

} // namespace

} // namespace quillory::test::atspi
