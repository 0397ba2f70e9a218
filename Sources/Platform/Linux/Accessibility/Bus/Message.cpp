// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Message.h"

#include <array>

namespace platform::desktop::atspi {

namespace {
bool isNullReference(const ElementRef &ref) {
    return ref.isNull() || ref.path == nullPath;
}
} // namespace

bool readNext(sd_bus_message *message, bool &value) {
    int flag = 0; // sd-bus writes four bytes
    const bool isRead = sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &flag) > 0;
    value = flag != 0;
    return isRead;
}

bool readNext(sd_bus_message *message, std::int32_t &value) {
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_INT32, &value) > 0;
}

bool readNext(sd_bus_message *message, std::uint32_t &value) {
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_UINT32, &value) > 0;
}

bool readNext(sd_bus_message *message, std::string &value) {
    const char *text = "";
    const bool isRead = sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &text) > 0;
    value = text;
    return isRead;
}

bool readNext(sd_bus_message *message, QString &value) {
    std::string text;
    const bool isRead = readNext(message, text);
    value = QString::fromStdString(text);
    return isRead;
}

bool readNext(sd_bus_message *message, Role &value) {
    std::uint32_t number = 0;
    const bool isRead = readNext(message, number);
    value = static_cast<Role>(number);
    return isRead;
}

bool readNext(sd_bus_message *message, ElementRef &value) {
    const char *bus = nullptr;
    const char *path = nullptr;
    if (sd_bus_message_read(message, "(so)", &bus, &path) <= 0) {
        return false;
    }
    value = {bus, path};
    return true;
}

bool readNext(sd_bus_message *message, Rect &value) {
    // Some toolkits give the four numbers without the structure around them.
    const bool isBare = sd_bus_message_has_signature(message, "iiii") > 0;
    std::array<std::int32_t, 4> numbers{};
    auto &[x, y, width, height] = numbers;
    const bool isRead = sd_bus_message_read(message, isBare ? "iiii" : "(iiii)", &x, &y, &width, &height) > 0;
    value = {double(x), double(y), double(width), double(height)};
    return isRead;
}

bool readNext(sd_bus_message *message, States &value) {
    std::vector<std::uint32_t> words;
    const bool isRead = readNext(message, words);
    words.resize(2);
    value = States(words[0] | std::uint64_t{words[1]} << 32U);
    return isRead;
}

bool readNext(sd_bus_message *message, Attributes &value) {
    if (!enterNext(message, SD_BUS_TYPE_ARRAY)) {
        return false;
    }
    const char *key = nullptr;
    const char *text = nullptr;
    while (sd_bus_message_read(message, "{ss}", &key, &text) > 0) {
        value.insert_or_assign(key, text);
    }
    return sd_bus_message_exit_container(message) >= 0;
}

bool enterNext(sd_bus_message *message, char kind) {
    char next = 0;
    const char *contents = nullptr;
    return sd_bus_message_peek_type(message, &next, &contents) > 0 && next == kind &&
           sd_bus_message_enter_container(message, kind, contents) > 0;
}

bool Reply::isError() const {
    return m_message != nullptr && sd_bus_message_is_method_error(m_message.get(), nullptr) > 0;
}

std::optional<Rect> Reply::extents() const {
    const auto rect = as<Rect>();
    return rect != Rect{-1, -1, -1, -1} ? rect : std::nullopt;
}

std::optional<ElementRef> Reply::reference() const {
    auto reference = as<ElementRef>();
    return reference && !isNullReference(*reference) ? reference : std::nullopt;
}

std::optional<std::vector<ElementRef>> Reply::references(std::size_t limit) const {
    auto references = as<std::vector<ElementRef>>();
    if (references) {
        std::erase_if(*references, isNullReference);
        references->resize(std::min(references->size(), limit));
    }
    return references;
}

std::optional<std::string> vanishedName(sd_bus_message *signal) {
    const auto names = readValues<std::string, std::string, std::string>(signal);
    return names && std::get<2>(*names).empty() ? std::optional(std::get<0>(*names)) : std::nullopt;
}

ElementRef sourceOf(sd_bus_message *signal) {
    const char *sender = sd_bus_message_get_sender(signal);
    const char *path = sd_bus_message_get_path(signal);
    return {sender != nullptr ? sender : "", path != nullptr ? path : ""};
}

} // namespace platform::desktop::atspi
