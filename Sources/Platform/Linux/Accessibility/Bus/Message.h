// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Protocol.h"

#include <QString>

#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>
#include <tuple>
#include <vector>

namespace platform::desktop::atspi {

struct BusDeleter {
    void operator()(sd_bus *bus) const { sd_bus_close_unref(bus); }
};
struct MessageDeleter {
    void operator()(sd_bus_message *message) const { sd_bus_message_unref(message); }
};
struct SlotDeleter {
    void operator()(sd_bus_slot *slot) const { sd_bus_slot_unref(slot); }
};
using BusPtr = std::unique_ptr<sd_bus, BusDeleter>;
using MessagePtr = std::unique_ptr<sd_bus_message, MessageDeleter>;
using SlotPtr = std::unique_ptr<sd_bus_slot, SlotDeleter>;

using Clock = std::chrono::steady_clock;
using Deadline = Clock::time_point;

// Messages are read by C++ types. Applications send what they like: reading fails as a whole when a message holds
// anything else than what is asked for. Each readNext() reads the next value; false when there is none of that type.
bool readNext(sd_bus_message *message, bool &value);
bool readNext(sd_bus_message *message, std::int32_t &value);
bool readNext(sd_bus_message *message, std::uint32_t &value);
bool readNext(sd_bus_message *message, std::string &value);
bool readNext(sd_bus_message *message, QString &value);
bool readNext(sd_bus_message *message, Role &value);
bool readNext(sd_bus_message *message, ElementRef &value);
bool readNext(sd_bus_message *message, Rect &value);
bool readNext(sd_bus_message *message, States &value);
bool readNext(sd_bus_message *message, Attributes &value);
/// Enters the container that comes next; false when that is none of the kind (SD_BUS_TYPE_ARRAY ...).
bool enterNext(sd_bus_message *message, char kind);

template <class T> bool readNext(sd_bus_message *message, std::vector<T> &values) {
    if (!enterNext(message, SD_BUS_TYPE_ARRAY)) {
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
    if (isRead && sizeof...(More) == 0) {
        enterNext(message, SD_BUS_TYPE_VARIANT);
    }
    isRead = isRead && std::apply([&](auto &...value) { return (readNext(message, value) && ...); }, values);
    if constexpr (sizeof...(More) == 0) {
        return isRead ? std::optional(std::get<0>(std::move(values))) : std::nullopt;
    } else {
        return isRead ? std::optional(std::move(values)) : std::nullopt;
    }
}

/// A method call to send: to which element, which method, and what appends its arguments to the message (negative when
/// that fails).
struct Call {
    ElementRef target;
    const char *interface = nullptr;
    const char *member = nullptr;
    std::function<int(sd_bus_message *)> arguments = {};
    /// Whether the bus may start the service that is called.
    bool mayStart = false;
};

/// The answer to a call: values, an error, or nothing in time.
class Reply {
  public:
    Reply() = default;
    explicit Reply(MessagePtr message) : m_message(std::move(message)) {}

    /// Whether anything came, be it an error.
    [[nodiscard]] bool isAnswered() const { return m_message != nullptr; }
    [[nodiscard]] bool isError() const;

    /// The values of these types that the answer begins with, see readValues(); absent for an error or other types.
    template <class... T> [[nodiscard]] auto as() const { return readValues<T...>(content()); }
    /// The rectangle, in pixels of the screen from its top left. (-1, -1, -1, -1), which stands for an element that is
    /// not on the screen, is absent.
    [[nodiscard]] std::optional<Rect> extents() const;
    /// The element; absent for a null reference.
    [[nodiscard]] std::optional<ElementRef> reference() const;
    /// The elements, at most the limit of them; null references are left out.
    [[nodiscard]] std::optional<std::vector<ElementRef>> references(std::size_t limit) const;

  private:
    [[nodiscard]] sd_bus_message *content() const { return isError() ? nullptr : m_message.get(); }

    MessagePtr m_message;
};

/// The name that has left the bus, by a NameOwnerChanged signal; absent when one came or changed hands.
[[nodiscard]] std::optional<std::string> vanishedName(sd_bus_message *signal);
/// The element that a signal is about.
[[nodiscard]] ElementRef sourceOf(sd_bus_message *signal);

} // namespace platform::desktop::atspi
