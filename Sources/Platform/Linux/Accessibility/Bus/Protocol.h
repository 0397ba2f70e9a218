// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"

#include <QtGlobal>

#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace platform::desktop::atspi {

/// One object on the accessibility bus: the unique name of the connection that shows it, and its path there.
struct ElementRef {
    std::string bus;
    std::string path;

    [[nodiscard]] bool isNull() const { return bus.empty() || path.empty(); }
    friend bool operator==(const ElementRef &, const ElementRef &) = default;
    friend bool operator<(const ElementRef &a, const ElementRef &b) {
        return std::tie(a.bus, a.path) < std::tie(b.bus, b.path);
    }
};

struct ElementRefHash {
    std::size_t operator()(const ElementRef &ref) const noexcept {
        return std::hash<std::string>()(ref.path) ^ (std::hash<std::string>()(ref.bus) << 1U);
    }
};

/// An element together with the process that shows it (0 when unknown).
struct Handle {
    ElementRef ref;
    qint32 pid = 0;
};

/// Role numbers of the protocol that the code tells apart.
enum class Role : std::uint32_t {
    comboBox = 11,
    dialog = 16,
    frame = 23,
    icon = 26,
    image = 27,
    label = 29,
    panel = 39,
    passwordText = 40,
    pushButton = 43,
    terminal = 60,
    text = 61,
    unknown = 67,
    window = 69,
    application = 75,
    entry = 79,
    documentFrame = 82,
    link = 88,
    documentWeb = 95,
    levelBar = 103,
    staticText = 116,
    subscript = 119,
    superscript = 120,
    contentDeletion = 125,
    contentInsertion = 126,
    mark = 127,
    suggestion = 128,
};

/// Bits of a state set.
enum class State : unsigned {
    active = 1,
    defunct = 6,
    editable = 7,
    focusable = 11,
    focused = 12,
    iconified = 15,
    multiLine = 17,
    showing = 25,
    singleLine = 26,
    readOnly = 43,
};

class States {
  public:
    States() = default;
    explicit States(std::uint64_t bits) : m_bits(bits) {}
    [[nodiscard]] bool has(State state) const { return ((m_bits >> static_cast<unsigned>(state)) & 1U) != 0; }
    friend bool operator==(const States &, const States &) = default;

  private:
    std::uint64_t m_bits = 0;
};

/// Whether these states are those of an active window. A minimised window of Chromium still calls itself active.
[[nodiscard]] inline bool isActiveWindow(const States &states) {
    return states.has(State::active) && !states.has(State::iconified);
}

using Attributes = std::map<std::string, std::string, std::less<>>;

/// The bus itself.
inline constexpr const char *busName = "org.freedesktop.DBus";
inline constexpr const char *registryName = "org.a11y.atspi.Registry";
/// The signal that the registry has been started. A new registry knows nothing of earlier registrations.
inline constexpr const char *registryStarted = "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                                               "arg0='org.a11y.atspi.Registry',arg1=''";
inline constexpr const char *rootPath = "/org/a11y/atspi/accessible/root";
inline constexpr const char *nullPath = "/org/a11y/atspi/null";
inline constexpr const char *accessibleInterface = "org.a11y.atspi.Accessible";
inline constexpr const char *textInterface = "org.a11y.atspi.Text";
inline constexpr const char *editableTextInterface = "org.a11y.atspi.EditableText";
inline constexpr const char *componentInterface = "org.a11y.atspi.Component";
inline constexpr const char *documentInterface = "org.a11y.atspi.Document";

} // namespace platform::desktop::atspi
