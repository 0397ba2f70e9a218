// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/TypedMessage.h"

namespace platform::desktop::atspi {

namespace {
const char *nextText(sd_bus_message *message) {
    const char *text = nullptr;
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &text) > 0 ? text : nullptr;
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
    const char *text = nextText(message);
    value = text != nullptr ? text : "";
    return text != nullptr;
}

bool readNext(sd_bus_message *message, QString &value) {
    const char *text = nextText(message);
    value = QString::fromUtf8(text);
    return text != nullptr;
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

bool readNext(sd_bus_message *message, PixelRect &value) {
    // Some toolkits give the four numbers without the structure around them.
    const bool isBare = sd_bus_message_has_signature(message, "iiii") > 0;
    return sd_bus_message_read(message, isBare ? "iiii" : "(iiii)", &value.x, &value.y, &value.width, &value.height) >
           0;
}

bool readNext(sd_bus_message *message, States &value) {
    const void *data = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(message, SD_BUS_TYPE_UINT32, &data, &size) < 0) {
        return false;
    }
    const auto *words = static_cast<const std::uint32_t *>(data);
    const auto word = [&](std::size_t i) -> std::uint64_t { return size / sizeof *words > i ? words[i] : 0; };
    value = States(word(0) | word(1) << 32U);
    return true;
}

bool readNext(sd_bus_message *message, Attributes &value) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{ss}") <= 0) {
        return false;
    }
    const char *key = nullptr;
    const char *text = nullptr;
    while (sd_bus_message_read(message, "{ss}", &key, &text) > 0) {
        value.insert_or_assign(key, text);
    }
    return sd_bus_message_exit_container(message) >= 0;
}

int append(sd_bus_message *message, bool value) {
    const int flag = value ? 1 : 0; // sd-bus reads four bytes
    return sd_bus_message_append_basic(message, SD_BUS_TYPE_BOOLEAN, &flag);
}

int append(sd_bus_message *message, std::int32_t value) {
    return sd_bus_message_append_basic(message, SD_BUS_TYPE_INT32, &value);
}

int append(sd_bus_message *message, std::uint32_t value) {
    return sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT32, &value);
}

int append(sd_bus_message *message, const std::string &value) {
    return sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, value.c_str());
}

} // namespace platform::desktop::atspi
