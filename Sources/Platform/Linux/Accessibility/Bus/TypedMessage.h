// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Protocol.h"

#include <QString>

#include <systemd/sd-bus.h>

#include <vector>

/// Reads and writes the arguments of D-Bus messages by their C++ types. Applications send what they like: reading fails
/// as a whole when a message holds anything else than what is asked for.
namespace platform::desktop::atspi {

/// The D-Bus signature of a type.
template <class T> inline constexpr const char *signatureOf = nullptr;
template <> inline constexpr const char *signatureOf<bool> = "b";
template <> inline constexpr const char *signatureOf<std::int32_t> = "i";
template <> inline constexpr const char *signatureOf<std::uint32_t> = "u";
template <> inline constexpr const char *signatureOf<std::string> = "s";
template <> inline constexpr const char *signatureOf<QString> = "s";
template <> inline constexpr const char *signatureOf<Role> = "u";
template <> inline constexpr const char *signatureOf<ElementRef> = "(so)";
template <> inline constexpr const char *signatureOf<PixelRect> = "(iiii)";
template <> inline constexpr const char *signatureOf<States> = "au";
template <> inline constexpr const char *signatureOf<Attributes> = "a{ss}";
template <> inline constexpr const char *signatureOf<std::vector<std::string>> = "as";
template <> inline constexpr const char *signatureOf<std::vector<ElementRef>> = "a(so)";

/// Each reads the next value of a message; false when there is none of that type.
bool readNext(sd_bus_message *message, bool &value);
bool readNext(sd_bus_message *message, std::int32_t &value);
bool readNext(sd_bus_message *message, std::uint32_t &value);
bool readNext(sd_bus_message *message, std::string &value);
bool readNext(sd_bus_message *message, QString &value);
bool readNext(sd_bus_message *message, Role &value);
bool readNext(sd_bus_message *message, ElementRef &value);
bool readNext(sd_bus_message *message, PixelRect &value);
bool readNext(sd_bus_message *message, States &value);
bool readNext(sd_bus_message *message, Attributes &value);

template <class T> bool readNext(sd_bus_message *message, std::vector<T> &values) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, signatureOf<T>) <= 0) {
        return false;
    }
    for (T value; readNext(message, value);) {
        values.push_back(std::move(value));
    }
    return sd_bus_message_exit_container(message) >= 0;
}

/// The values that a message begins with: one of them as it is, several as a tuple. A single value may also stand in a
/// variant, as those of properties do. A null message has no values.
template <class First, class... More> auto readValues(sd_bus_message *message) {
    std::tuple<First, More...> values;
    bool isRead = message != nullptr && sd_bus_message_rewind(message, 1) >= 0;
    if (isRead && sizeof...(More) == 0 && sd_bus_message_verify_type(message, SD_BUS_TYPE_VARIANT, nullptr) > 0) {
        isRead = sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, signatureOf<First>) > 0;
    }
    isRead = isRead && std::apply([&](auto &...value) { return (readNext(message, value) && ...); }, values);
    if constexpr (sizeof...(More) == 0) {
        return isRead ? std::optional(std::get<0>(std::move(values))) : std::nullopt;
    } else {
        return isRead ? std::optional(std::move(values)) : std::nullopt;
    }
}

/// Each appends a value to a message; negative when that failed.
int append(sd_bus_message *message, bool value);
int append(sd_bus_message *message, std::int32_t value);
int append(sd_bus_message *message, std::uint32_t value);
int append(sd_bus_message *message, const std::string &value);
int append(sd_bus_message *message, const char *value) = delete; // would become a bool

} // namespace platform::desktop::atspi
