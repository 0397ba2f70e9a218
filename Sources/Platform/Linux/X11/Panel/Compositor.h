// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

namespace platform::desktop {

/// Whether a compositing manager draws the screen, and so whether windows can be translucent. Follows one that starts
/// or ends. Needs a QGuiApplication on X11; without one there is no compositor. Main thread only.
class Compositor final : public QAbstractNativeEventFilter {
  public:
    explicit Compositor(std::function<void()> onChange);
    ~Compositor() override;
    Compositor(const Compositor &) = delete;
    Compositor &operator=(const Compositor &) = delete;

    [[nodiscard]] bool isRunning() const { return m_running; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

  private:
    std::function<void()> m_onChange;
    std::uint32_t m_selection = 0;
    std::uint8_t m_selectionEvent = 0;
    bool m_running = false;
};

} // namespace platform::desktop
