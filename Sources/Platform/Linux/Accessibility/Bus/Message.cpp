// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Message.h"

#include <array>

namespace platform::desktop::atspi {

namespace calls {

namespace {
constexpr std::uint32_t screenCoordinates = 0;
}

Call method(ElementRef target, const char *interface, const char *member) {
    return {std::move(target), interface, member, {}, false};
}

Call withText(ElementRef target, const char *interface, const char *member, std::string argument) {
    return {std::move(target), interface, member, [argument = std::move(argument)](sd_bus_message *message) {
                return sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, argument.c_str());
            }};
}

Call withNumbers(ElementRef target, const char *interface, const char *member, std::vector<int> arguments) {
    return {std::move(target), interface, member, [arguments = std::move(arguments)](sd_bus_message *message) {
                int result = 0;
                for (const int argument : arguments) {
                    result = std::min(result, sd_bus_message_append_basic(message, SD_BUS_TYPE_INT32, &argument));
                }
                return result;
            }};
}

Call property(ElementRef target, const char *interface, const char *name) {
    return {std::move(target), "org.freedesktop.DBus.Properties", "Get", [interface, name](sd_bus_message *message) {
                return sd_bus_message_append(message, "ss", interface, name);
            }};
}

Call role(const ElementRef &target) {
    return method(target, accessibleInterface, "GetRole");
}

Call states(const ElementRef &target) {
    return method(target, accessibleInterface, "GetState");
}

Call children(const ElementRef &target) {
    return method(target, accessibleInterface, "GetChildren");
}

Call attributes(const ElementRef &target) {
    return method(target, accessibleInterface, "GetAttributes");
}

Call interfaces(const ElementRef &target) {
    return method(target, accessibleInterface, "GetInterfaces");
}

Call name(const ElementRef &target) {
    return property(target, accessibleInterface, "Name");
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

Call parent(const ElementRef &target) {
    return property(target, accessibleInterface, "Parent");
}

Call text(const ElementRef &target, int from, int to) {
    return {target, textInterface, "GetText",
            [from, to](sd_bus_message *message) { return sd_bus_message_append(message, "ii", from, to); }};
}

Call attributeRun(const ElementRef &target, int offset) {
    return {target, textInterface, "GetAttributeRun",
            [offset](sd_bus_message *message) { return sd_bus_message_append(message, "ib", offset, 0); }};
}

Call rangeExtents(const ElementRef &target, int from, int to) {
    return {target, textInterface, "GetRangeExtents", [from, to](sd_bus_message *message) {
                return sd_bus_message_append(message, "iiu", from, to, screenCoordinates);
            }};
}

Call characterCount(const ElementRef &target) {
    return property(target, textInterface, "CharacterCount");
}

Call extents(const ElementRef &target) {
    return {target, componentInterface, "GetExtents", [](sd_bus_message *message) {
                return sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT32, &screenCoordinates);
            }};
}

namespace {
// What a search matches: all of these states, any of these roles (bits of the first words; none: any element), and no
// condition on attributes and interfaces.
Call matches(const ElementRef &target, int states, Role role, int limit) {
    return {target, "org.a11y.atspi.Collection", "GetMatches", [states, role, limit](sd_bus_message *message) {
                constexpr int all = 1;
                constexpr int any = 2;
                constexpr std::uint32_t canonicalOrder = 1;
                std::array<std::uint32_t, 4> roles{};
                if (role != Role::unknown) {
                    roles.at(static_cast<std::uint32_t>(role) / 32) = 1U << (static_cast<std::uint32_t>(role) % 32);
                }
                return sd_bus_message_append(message, "(aiia{ss}iaiiasib)uib", 2, states, 0, all, 0, all, 4, roles[0],
                                             roles[1], roles[2], roles[3], role != Role::unknown ? any : all, 0, all, 0,
                                             canonicalOrder, limit, 1);
            }};
}
} // namespace

Call focusedMatches(const ElementRef &target) {
    return matches(target, 1 << static_cast<int>(State::focused), Role::unknown, 0);
}

Call allMatches(const ElementRef &target, int limit) {
    return matches(target, 0, Role::unknown, limit);
}

Call staticTextMatches(const ElementRef &target, int limit) {
    return matches(target, 0, Role::staticText, limit);
}

} // namespace calls

namespace {
std::optional<ElementRef> readReference(sd_bus_message *message) {
    const char *bus = nullptr;
    const char *path = nullptr;
    if (sd_bus_message_read(message, "(so)", &bus, &path) <= 0) {
        return std::nullopt;
    }
    return ElementRef{bus, path};
}

bool isRealElement(const ElementRef &ref) {
    return !ref.isNull() && ref.path != nullPath;
}
} // namespace

bool Reply::isError() const {
    return m_message != nullptr && sd_bus_message_is_method_error(m_message.get(), nullptr) > 0;
}

sd_bus_message *Reply::at(const char *signature) const {
    if (m_message == nullptr || isError() || sd_bus_message_rewind(m_message.get(), 1) < 0) {
        return nullptr;
    }
    return sd_bus_message_has_signature(m_message.get(), signature) > 0 ? m_message.get() : nullptr;
}

sd_bus_message *Reply::insideProperty(const char *signature) const {
    auto *message = at("v");
    const bool entered =
        message != nullptr && sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, signature) > 0;
    return entered ? message : nullptr;
}

std::optional<std::uint32_t> Reply::number() const {
    std::uint32_t value = 0;
    auto *message = at("u");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_UINT32, &value) <= 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> Reply::flag() const {
    int value = 0;
    auto *message = at("b");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &value) <= 0) {
        return std::nullopt;
    }
    return value != 0;
}

std::optional<QString> Reply::string() const {
    const char *value = nullptr;
    auto *message = at("s");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &value) <= 0) {
        return std::nullopt;
    }
    return QString::fromUtf8(value);
}

std::optional<States> Reply::states() const {
    const void *data = nullptr;
    std::size_t size = 0;
    auto *message = at("au");
    if (message == nullptr || sd_bus_message_read_array(message, SD_BUS_TYPE_UINT32, &data, &size) < 0) {
        return std::nullopt;
    }
    std::uint64_t bits = 0;
    const auto *words = static_cast<const std::uint32_t *>(data);
    for (std::size_t i = 0; i < std::min<std::size_t>(size / sizeof(std::uint32_t), 2); ++i) {
        bits |= static_cast<std::uint64_t>(words[i]) << (32 * i);
    }
    return States(bits);
}

std::optional<Attributes> Reply::attributes() const {
    auto *message = at("a{ss}");
    return message != nullptr ? readAttributes(message) : std::nullopt;
}

std::optional<std::pair<Attributes, int>> Reply::attributeRun() const {
    int from = 0;
    int to = 0;
    auto *message = at("a{ss}ii");
    auto style = message != nullptr ? readAttributes(message) : std::nullopt;
    if (!style || sd_bus_message_exit_container(message) < 0 || sd_bus_message_read(message, "ii", &from, &to) <= 0) {
        return std::nullopt;
    }
    return std::pair(*std::move(style), to);
}

std::optional<Attributes> Reply::readAttributes(sd_bus_message *message) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{ss}") < 0) {
        return std::nullopt;
    }
    Attributes attributes;
    const char *key = nullptr;
    const char *value = nullptr;
    while (sd_bus_message_read(message, "{ss}", &key, &value) > 0) {
        attributes.insert_or_assign(key, value);
    }
    return attributes;
}

std::optional<std::vector<std::string>> Reply::strings() const {
    auto *message = at("as");
    if (message == nullptr || sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "s") < 0) {
        return std::nullopt;
    }
    std::vector<std::string> strings;
    const char *value = nullptr;
    while (sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &value) > 0) {
        strings.emplace_back(value);
    }
    return strings;
}

std::optional<PixelRect> Reply::extents() const {
    // Some toolkits give the four numbers bare, without the structure around them.
    PixelRect rect;
    auto *message = at("(iiii)");
    const char *types = "(iiii)";
    if (message == nullptr) {
        message = at("iiii");
        types = "iiii";
    }
    if (message == nullptr || sd_bus_message_read(message, types, &rect.x, &rect.y, &rect.width, &rect.height) <= 0 ||
        rect == PixelRect{-1, -1, -1, -1}) {
        return std::nullopt;
    }
    return rect;
}

std::optional<std::pair<int, int>> Reply::pairOfNumbers() const {
    std::pair<int, int> value;
    auto *message = at("ii");
    if (message == nullptr || sd_bus_message_read(message, "ii", &value.first, &value.second) <= 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::vector<ElementRef>> Reply::references(std::size_t limit) const {
    auto *message = at("a(so)");
    if (message == nullptr || sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(so)") < 0) {
        return std::nullopt;
    }
    std::vector<ElementRef> references;
    while (references.size() < limit) {
        auto reference = readReference(message);
        if (!reference) {
            break;
        }
        if (isRealElement(*reference)) {
            references.push_back(std::move(*reference));
        }
    }
    return references;
}

std::optional<int> Reply::numberProperty() const {
    int value = 0;
    auto *message = insideProperty("i");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_INT32, &value) <= 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> Reply::flagProperty() const {
    int value = 0;
    auto *message = insideProperty("b");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &value) <= 0) {
        return std::nullopt;
    }
    return value != 0;
}

std::optional<QString> Reply::stringProperty() const {
    const char *value = nullptr;
    auto *message = insideProperty("s");
    if (message == nullptr || sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &value) <= 0) {
        return std::nullopt;
    }
    return QString::fromUtf8(value);
}

std::optional<ElementRef> Reply::referenceProperty() const {
    auto *message = insideProperty("(so)");
    auto reference = message != nullptr ? readReference(message) : std::nullopt;
    return reference && isRealElement(*reference) ? reference : std::nullopt;
}

ElementRef sourceOf(sd_bus_message *signal) {
    const char *sender = sd_bus_message_get_sender(signal);
    const char *path = sd_bus_message_get_path(signal);
    return {sender != nullptr ? sender : "", path != nullptr ? path : ""};
}

} // namespace platform::desktop::atspi
