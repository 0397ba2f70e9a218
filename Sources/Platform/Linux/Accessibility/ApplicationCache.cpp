// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/ApplicationCache.h"

namespace platform::desktop::atspi {

namespace {

// More children than this are never listed in full; whoever has them is asked.
constexpr int maxChildCount = 100'000;

std::optional<States> readStates(sd_bus_message *message) {
    const void *data = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(message, SD_BUS_TYPE_UINT32, &data, &size) < 0) {
        return std::nullopt;
    }
    const auto *words = static_cast<const std::uint32_t *>(data);
    const std::size_t count = size / sizeof(std::uint32_t);
    const std::uint64_t low = count > 0 ? words[0] : 0;
    const std::uint64_t high = count > 1 ? words[1] : 0;
    return States(low | (high << 32U));
}

std::optional<ListedElement> readItem(sd_bus_message *message) {
    const char *bus = nullptr;
    const char *path = nullptr;
    const char *application = nullptr;
    const char *applicationPath = nullptr;
    const char *parentBus = nullptr;
    const char *parentPath = nullptr;
    const char *name = nullptr;
    int index = 0;
    int childCount = 0;
    std::uint32_t role = 0;
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_STRUCT, "(so)(so)(so)iiassusau") <= 0 ||
        sd_bus_message_read(message, "(so)(so)(so)ii", &bus, &path, &application, &applicationPath, &parentBus,
                            &parentPath, &index, &childCount) <= 0 ||
        sd_bus_message_skip(message, "as") < 0 || sd_bus_message_read(message, "su", &name, &role) <= 0 ||
        sd_bus_message_skip(message, "s") < 0) {
        return std::nullopt;
    }
    const auto states = readStates(message);
    if (!states || sd_bus_message_exit_container(message) < 0) {
        return std::nullopt;
    }
    ListedElement element{{bus, path}, {parentBus, parentPath}, 0, 0, static_cast<Role>(role), *states, {}};
    element.index = index >= 0 ? static_cast<std::size_t>(index) : maxChildCount;
    element.childCount = childCount >= 0 && childCount < maxChildCount ? static_cast<std::size_t>(childCount) : 1;
    // Only a text leaf's name is of use, and most elements are none.
    if (element.role == Role::staticText) {
        element.name = QString::fromUtf8(name);
    }
    return element;
}

} // namespace

std::vector<ListedElement> listApplication(Connection &connection, const std::string &bus, Deadline deadline) {
    const auto reply =
        connection.call(calls::method({bus, "/org/a11y/atspi/cache"}, "org.a11y.atspi.Cache", "GetItems"), deadline);
    std::vector<ListedElement> elements;
    auto *message = reply.message();
    if (message == nullptr || reply.isError() ||
        sd_bus_message_has_signature(message, "a((so)(so)(so)iiassusau)") <= 0 ||
        sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "((so)(so)(so)iiassusau)") < 0) {
        return elements;
    }
    while (auto element = readItem(message)) {
        elements.push_back(std::move(*element));
    }
    return elements;
}

} // namespace platform::desktop::atspi
