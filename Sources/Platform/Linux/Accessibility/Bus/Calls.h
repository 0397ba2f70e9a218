// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Message.h"

/// The calls of the accessibility protocol, and the few of the session bus that find the accessibility bus.
namespace platform::desktop::atspi::calls {

/// Appends a text, a number or a flag to a message; negative when that failed.
template <class T> int append(sd_bus_message *message, const T &value) {
    if constexpr (std::is_same_v<T, std::string>) {
        return sd_bus_message_append(message, "s", value.c_str());
    } else {
        static_assert(std::is_integral_v<T> && sizeof(T) <= 4); // no const char *, for one
        const char *type = std::is_same_v<T, bool> ? "b" : std::is_signed_v<T> ? "i" : "u";
        return sd_bus_message_append(message, type, value);
    }
}
/// A call with arguments that append() takes.
template <class... Arguments>
[[nodiscard]] Call method(ElementRef target, const char *interface, const char *member, Arguments... arguments) {
    return {std::move(target), interface, member,
            [... arguments = std::move(arguments)]([[maybe_unused]] sd_bus_message *message) {
                return std::min({0, append(message, arguments)...});
            }};
}
[[nodiscard]] inline Call property(ElementRef target, const char *interface, const char *property) {
    return method(std::move(target), "org.freedesktop.DBus.Properties", "Get", std::string(interface),
                  std::string(property));
}

/// A method of the protocol, which makes a call of an element and the arguments.
struct Method {
    const char *interface;
    const char *member;
    template <class... Arguments> [[nodiscard]] Call operator()(ElementRef target, Arguments... arguments) const {
        return method(std::move(target), interface, member, std::move(arguments)...);
    }
};
/// A property of the protocol, likewise.
struct Property {
    const char *interface;
    const char *member;
    [[nodiscard]] Call operator()(ElementRef target) const { return property(std::move(target), interface, member); }
};

inline constexpr Method role{accessibleInterface, "GetRole"};
inline constexpr Method states{accessibleInterface, "GetState"};
inline constexpr Method attributes{accessibleInterface, "GetAttributes"};
inline constexpr Method interfaces{accessibleInterface, "GetInterfaces"};
inline constexpr Method children{accessibleInterface, "GetChildren"};
inline constexpr Property childCount{accessibleInterface, "ChildCount"};
inline constexpr Property name{accessibleInterface, "Name"};
inline constexpr Property parent{accessibleInterface, "Parent"};
inline constexpr Property characterCount{textInterface, "CharacterCount"};
inline constexpr Property caretOffset{textInterface, "CaretOffset"};
/// A selection by its number, as two offsets.
inline constexpr Method selection{textInterface, "GetSelection"};

/// An element's whole text.
[[nodiscard]] inline Call text(const ElementRef &target) {
    return method(target, textInterface, "GetText", 0, -1);
}
/// The style of a character, as far as it differs from the document's, and where it begins and ends.
[[nodiscard]] inline Call attributeRun(const ElementRef &target, int offset) {
    return method(target, textInterface, "GetAttributeRun", offset, false);
}
/// A document's attribute, such as its address.
[[nodiscard]] inline Call documentAttribute(const ElementRef &target, const char *attribute) {
    return method(target, documentInterface, "GetAttributeValue", std::string(attribute));
}
/// Frames are asked for in coordinates of the screen.
inline constexpr std::uint32_t screenCoordinates = 0;
[[nodiscard]] inline Call extents(const ElementRef &target) {
    return method(target, componentInterface, "GetExtents", screenCoordinates);
}
[[nodiscard]] inline Call rangeExtents(const ElementRef &target, int from, int to) {
    return method(target, textInterface, "GetRangeExtents", from, to, screenCoordinates);
}
/// What the application itself is asked to find: elements with these states (bits) and of this role (unknown:
/// any), at most the limit of them (0: all).
struct Search {
    int states = 0;
    Role role = Role::unknown;
    int limit = 0;
};
/// The elements below the target that a search finds, in the order of a walk.
[[nodiscard]] Call matches(const ElementRef &target, Search search);
/// The roots of all applications.
[[nodiscard]] inline Call applications() {
    return children({registryName, rootPath});
}
/// Asks for events of a kind, or no longer. Applications send only events that somebody has registered for.
[[nodiscard]] Call registration(const char *event, bool isOn);

/// On the session bus: where the accessibility bus is; whether accessibility is on; switching it on.
[[nodiscard]] Call accessibilityBusAddress(bool mayStart);
[[nodiscard]] Call isAccessibilityOn(bool mayStart = false);
[[nodiscard]] Call switchAccessibilityOn();
/// A question that the bus itself answers, so that it shows whether the connection works.
[[nodiscard]] inline Call busId() {
    return method({busName, "/org/freedesktop/DBus"}, busName, "GetId");
}
/// The process behind a name on the bus.
[[nodiscard]] inline Call processOf(const std::string &connection) {
    return method({busName, "/org/freedesktop/DBus"}, busName, "GetConnectionUnixProcessID", connection);
}

} // namespace platform::desktop::atspi::calls
