// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FakeAccessibilityBus.h"
#include "RealDesktop/AccessibleTree.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

namespace quillory::test::atspi {

using namespace platform;

// The protocol's numbers of states and roles.
inline constexpr unsigned active = 1;
inline constexpr unsigned defunct = 6;
inline constexpr unsigned editable = 7;
inline constexpr unsigned focusable = 11;
inline constexpr unsigned multiLine = 17;
inline constexpr unsigned frameRole = 23;
inline constexpr unsigned panelRole = 39;
inline constexpr unsigned passwordRole = 40;
inline constexpr unsigned entryRole = 79;
inline constexpr unsigned pageRole = 95;
inline constexpr unsigned staticRole = 116;

/// A chat on a private bus, and the program's side of it, which start() makes.
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

    // The fake application lives in this process, so another process is given as our own.
    void start(qint32 ownPid = 1) {
        accessibility = std::make_unique<desktop::AtspiAccessibility>(
            queue, desktop::AtspiAccessibility::Options{.activeWindow = [this] { return activeWindow; },
                                                        .sessionBusAddress = bus.address(),
                                                        .ownPid = ownPid});
    }
    std::optional<AXUIElement> focused() {
        return read<AXUIElement>(accessibility->createSystemWide(), AXAttribute::focusedUIElement);
    }
    std::optional<QString> focusedValue() { return read<QString>(focused(), AXAttribute::value); }
    bool waitForValue(const char *text) {
        return waitUntil([&] { return focusedValue() == QString::fromUtf8(text); });
    }
};

} // namespace quillory::test::atspi
