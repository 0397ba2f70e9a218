// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Protocol.h"

#include <QString>

#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>
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

/// A method call to send: to whom, what, and what writes its arguments into the message.
struct Call {
    ElementRef target;
    const char *interface = nullptr;
    const char *member = nullptr;
    std::function<int(sd_bus_message *)> arguments;
    /// Whether the bus may start the service that is asked.
    bool mayStart = false;
};

/// The questions of the protocol.
namespace calls {
[[nodiscard]] Call method(ElementRef target, const char *interface, const char *member);
[[nodiscard]] Call withText(ElementRef target, const char *interface, const char *member, std::string argument);
[[nodiscard]] Call withNumbers(ElementRef target, const char *interface, const char *member,
                               std::vector<int> arguments);
[[nodiscard]] Call property(ElementRef target, const char *interface, const char *name);
[[nodiscard]] Call role(const ElementRef &target);
[[nodiscard]] Call states(const ElementRef &target);
[[nodiscard]] Call children(const ElementRef &target);
[[nodiscard]] Call attributes(const ElementRef &target);
[[nodiscard]] Call interfaces(const ElementRef &target);
[[nodiscard]] Call name(const ElementRef &target);
[[nodiscard]] Call parent(const ElementRef &target);
[[nodiscard]] Call text(const ElementRef &target, int from, int to);
/// The style of a character, as far as it differs from the document's.
[[nodiscard]] Call attributeRun(const ElementRef &target, int offset);
[[nodiscard]] Call rangeExtents(const ElementRef &target, int from, int to);
[[nodiscard]] Call characterCount(const ElementRef &target);
/// In coordinates of the screen.
[[nodiscard]] Call extents(const ElementRef &target);
/// The elements below the target that have the focus.
[[nodiscard]] Call focusedMatches(const ElementRef &target);
/// The first elements below the target, in the order of a walk, at most the limit of them: all, or the static texts.
[[nodiscard]] Call allMatches(const ElementRef &target, int limit);
[[nodiscard]] Call staticTextMatches(const ElementRef &target, int limit);
/// Applications send only those events that somebody has registered for.
[[nodiscard]] Call registration(const char *event, bool isOn);
} // namespace calls

/// The answer to a call: a value, an error, or nothing in time. Applications send what they like, so every unpacking
/// checks the types and yields "absent" for the wrong ones.
class Reply {
  public:
    Reply() = default;
    explicit Reply(MessagePtr message) : m_message(std::move(message)) {}

    /// Anything came, be it an error.
    [[nodiscard]] bool isAnswered() const { return m_message != nullptr; }
    [[nodiscard]] bool isError() const;

    [[nodiscard]] std::optional<std::uint32_t> number() const;
    [[nodiscard]] std::optional<bool> flag() const;
    [[nodiscard]] std::optional<QString> string() const;
    [[nodiscard]] std::optional<States> states() const;
    [[nodiscard]] std::optional<Attributes> attributes() const;
    [[nodiscard]] std::optional<std::vector<std::string>> strings() const;
    /// The rectangle; (-1, -1, -1, -1), which stands for an element that is not on the screen, is absent.
    [[nodiscard]] std::optional<PixelRect> extents() const;
    [[nodiscard]] std::optional<std::pair<int, int>> pairOfNumbers() const;
    /// A style and where it ends.
    [[nodiscard]] std::optional<std::pair<Attributes, int>> attributeRun() const;
    /// The objects, at most the limit of them; null references are left out.
    [[nodiscard]] std::optional<std::vector<ElementRef>> references(std::size_t limit) const;
    /// The values of properties.
    [[nodiscard]] std::optional<int> numberProperty() const;
    [[nodiscard]] std::optional<bool> flagProperty() const;
    [[nodiscard]] std::optional<QString> stringProperty() const;
    [[nodiscard]] std::optional<ElementRef> referenceProperty() const;

    [[nodiscard]] sd_bus_message *message() const { return m_message.get(); }

  private:
    [[nodiscard]] sd_bus_message *at(const char *signature) const;
    [[nodiscard]] sd_bus_message *insideProperty(const char *signature) const;
    [[nodiscard]] static std::optional<Attributes> readAttributes(sd_bus_message *message);
    MessagePtr m_message;
};

/// The element that a signal is about.
[[nodiscard]] ElementRef sourceOf(sd_bus_message *signal);

} // namespace platform::desktop::atspi
