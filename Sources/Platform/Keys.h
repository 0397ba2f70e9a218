// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace platform {

/// A key by its position, whatever the keyboard layout prints on it: the virtual key codes of an ANSI keyboard.
using KeyCode = std::uint16_t;
namespace keyCode {
inline constexpr KeyCode a = 0;
inline constexpr KeyCode v = 9;
inline constexpr KeyCode tab = 48;
inline constexpr KeyCode escape = 53;
} // namespace keyCode

/// Modifiers of a key event, as a bit mask. "Command" is the modifier of the desktop's own shortcuts: a desktop maps
/// it to what its programs select all and paste with. Lock keys are never reported.
using EventFlags = std::uint32_t;
namespace eventFlag {
inline constexpr EventFlags shift = 0x20000;
inline constexpr EventFlags control = 0x40000;
inline constexpr EventFlags option = 0x80000;
inline constexpr EventFlags command = 0x100000;
inline constexpr EventFlags all = shift | control | option | command;
} // namespace eventFlag

enum class TapEventType { keyDown, tapDisabledByTimeout, tapDisabledByUserInput };

struct TapEvent {
    TapEventType type = TapEventType::keyDown;
    KeyCode key = 0;
    EventFlags flags = 0;
};

enum class TapVerdict { pass, swallow };

/// Called on the main thread for each Tab and Esc press while the tap is enabled, before the application sees it.
/// Must decide at once.
using TapCallback = std::function<TapVerdict(const TapEvent &)>;

/// A key tap. Destroying it gives the keys back to the applications. Main thread only.
class EventTap {
  public:
    virtual ~EventTap() = default;
    /// Arms or disarms the tap. False when another program holds the keys; the tap is then disarmed.
    virtual bool setEnabled(bool enabled) = 0;
};

/// Makes key taps, of which one is enabled at a time. Main thread only.
class EventTaps {
  public:
    virtual ~EventTaps() = default;
    /// A disarmed tap, or null when key presses cannot be intercepted (another program holds the keys).
    [[nodiscard]] virtual std::unique_ptr<EventTap> create(TapCallback callback) = 0;
};

/// Types keys into whatever has the keyboard focus. Main thread only.
class KeyPoster {
  public:
    virtual ~KeyPoster() = default;
    /// Whether the user's own fingers are still on a modifier key or on the key that a tap swallowed. Keys posted
    /// meanwhile would mix with them.
    [[nodiscard]] virtual bool userHoldsKeys() = 0;
    /// Presses and releases a key with exactly these modifiers; one that the user still holds is released first and
    /// given back after. False when the keys could not be sent. Leaves no key down.
    virtual bool postKey(KeyCode key, EventFlags flags) = 0;
};

} // namespace platform
