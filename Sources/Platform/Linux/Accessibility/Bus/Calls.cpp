// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Calls.h"

#include <array>

namespace platform::desktop::atspi::calls {

namespace {
constexpr const char *serviceName = "org.a11y.Bus";
constexpr const char *servicePath = "/org/a11y/bus";
constexpr const char *statusInterface = "org.a11y.Status";

Call startingIf(bool mayStart, Call call) {
    call.mayStart = mayStart;
    return call;
}
} // namespace

Call matches(const ElementRef &target, Search search) {
    return {target, "org.a11y.atspi.Collection", "GetMatches", [search](sd_bus_message *message) {
                constexpr int all = 1;
                constexpr int any = 2;
                constexpr std::uint32_t canonicalOrder = 1;
                const bool hasRole = search.role != Role::unknown;
                const auto number = static_cast<std::uint32_t>(search.role);
                std::array<std::uint32_t, 4> roles{};
                roles.at(number / 32) = hasRole ? 1U << (number % 32) : 0;
                // Without a condition on attributes and interfaces.
                return sd_bus_message_append(message, "(aiia{ss}iaiiasib)uib", 2, search.states, 0, all, 0, all, 4,
                                             roles[0], roles[1], roles[2], roles[3], hasRole ? any : all, 0, all, 0,
                                             canonicalOrder, search.limit, 1);
            }};
}

Call registration(const char *event, bool isOn) {
    return {{registryName, "/org/a11y/atspi/registry"},
            "org.a11y.atspi.Registry",
            isOn ? "RegisterEvent" : "DeregisterEvent",
            [event, isOn](sd_bus_message *message) {
                return isOn ? sd_bus_message_append(message, "sass", event, 0, "")
                            : sd_bus_message_append(message, "s", event);
            },
            true};
}

Call accessibilityBusAddress(bool mayStart) {
    return startingIf(mayStart, method({serviceName, servicePath}, serviceName, "GetAddress"));
}

Call isAccessibilityOn(bool mayStart) {
    return startingIf(mayStart, property({serviceName, servicePath}, statusInterface, "IsEnabled"));
}

Call switchAccessibilityOn() {
    return {{serviceName, servicePath},
            "org.freedesktop.DBus.Properties",
            "Set",
            [](sd_bus_message *message) {
                return sd_bus_message_append(message, "ssv", statusInterface, "IsEnabled", "b", 1);
            },
            true};
}

} // namespace platform::desktop::atspi::calls
