// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Screens.h"

#include <QPoint>
#include <QRect>

#include <array>

namespace platform::desktop {

/// The monitors of the X screen, and the one place that converts between kinds of coordinates:
/// - pixels: of the root window, from the top left, y downwards; used by X11 and the accessibility bus;
/// - Qt's: device-independent; each monitor's top left corner is where it is in pixels, and distances from there are
///   divided by the monitor's scale;
/// - accessibility coordinates: Qt's, counted from the top left of the primary monitor;
/// - screen coordinates: the same, y upwards from the primary monitor's bottom left.
/// Kept up to date by events; asking waits for the X server only after something has changed. Main thread only.
class X11Screens final : public Screens {
  public:
    /// The application object must exist: a monitor's scale is the one that Qt draws with.
    explicit X11Screens(X11Connection &connection);

    [[nodiscard]] X11Connection &connection() const { return m_connection; }

    [[nodiscard]] std::vector<Screen> screens() override;
    [[nodiscard]] std::optional<Screen> mainScreen() override;

    /// A rectangle of pixels in accessibility coordinates, by the monitor that contains its centre.
    [[nodiscard]] Rect accessibilityRect(const Rect &pixels);
    /// Where Qt has to put the top left corner of a window that is to cover this rectangle of screen coordinates.
    [[nodiscard]] QPoint qtPosition(const Rect &screenRect);

  private:
    struct Monitor {
        QRect pixels;
        QRect visiblePixels;
        double scale = 1;
        /// In Qt's coordinates.
        Rect frame;
        Rect visibleFrame;
    };
    /// The edges that a panel of the desktop reserves: left, right, top, bottom, and the range of each along its edge.
    using Strut = std::array<int, 12>;

    void handle(const xcb_generic_event_t &event);
    void refresh();
    void readMonitors();
    static void cut(Monitor &monitor, const Strut &strut, const QRect &all);
    void reserveByWorkAreas();
    [[nodiscard]] std::vector<Strut> readStruts();
    void findMain();
    /// The monitor that contains this pixel, or is nearest to it.
    [[nodiscard]] const Monitor *monitorAt(Point pixel) const;
    [[nodiscard]] Screen screenOf(const Monitor &monitor) const;

    X11Connection &m_connection;
    std::vector<Monitor> m_monitors;
    std::size_t m_main = 0;
    bool m_isStale = true;
    bool m_isMainStale = true;
    xcb_window_t m_activeWindow = XCB_NONE;
    std::uint8_t m_firstRandrEvent = 0;
    RegistrationHandle m_rootEvents;
    RegistrationHandle m_activeWindowEvents;
    RegistrationHandle m_events;
    QObject m_context;
};

} // namespace platform::desktop
