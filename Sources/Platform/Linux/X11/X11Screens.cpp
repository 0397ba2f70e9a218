// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/X11Screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <xcb/randr.h>

#include <algorithm>
#include <utility>

namespace platform::desktop {

namespace {

/// No screen reaches further. Programs may write anything into their properties, and these numbers are added up.
constexpr int largestCoordinate = 0xFFFF;

double distance(const QRect &rectangle, Point point) {
    const double dx = std::max({rectangle.left() - point.x, point.x - rectangle.right(), 0.0});
    const double dy = std::max({rectangle.top() - point.y, point.y - rectangle.bottom(), 0.0});
    return dx + dy;
}

QRect rectFrom(const std::vector<std::uint32_t> &values, std::size_t index) {
    const auto at = [&](std::size_t i) {
        return std::clamp(static_cast<int>(values[index + i]), -largestCoordinate, largestCoordinate);
    };
    return {at(0), at(1), at(2), at(3)};
}

/// The edges with their ranges; where there are no ranges, the whole length of each edge.
std::array<int, 12> strutFrom(const std::vector<std::uint32_t> &values, std::ptrdiff_t count) {
    constexpr int all = largestCoordinate;
    std::array<int, 12> strut{0, 0, 0, 0, 0, all, 0, all, 0, all, 0, all};
    std::transform(values.begin(), values.begin() + count, strut.begin(),
                   [](std::uint32_t value) { return static_cast<int>(std::min<std::uint32_t>(value, all)); });
    return strut;
}

/// The scale that Qt draws with on the monitor whose corner is at this pixel. Qt does not move its screens' corners.
double scaleOf(QPoint corner) {
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen->geometry().topLeft() == corner) {
            return screen->devicePixelRatio();
        }
    }
    const QScreen *primary = QGuiApplication::primaryScreen();
    return primary != nullptr ? primary->devicePixelRatio() : 1;
}

/// A rectangle within a monitor in Qt's coordinates.
Rect toQt(const QRect &monitor, double scale, const Rect &pixels) {
    return {monitor.x() + (pixels.x - monitor.x()) / scale, monitor.y() + (pixels.y - monitor.y()) / scale,
            pixels.width / scale, pixels.height / scale};
}

qint64 area(const QRect &rectangle) {
    return qint64{rectangle.width()} * rectangle.height();
}

Rect fromQRect(const QRect &rectangle) {
    return {static_cast<double>(rectangle.x()), static_cast<double>(rectangle.y()),
            static_cast<double>(rectangle.width()), static_cast<double>(rectangle.height())};
}

} // namespace

X11Screens::X11Screens(X11Connection &connection)
    : m_connection(connection), m_firstRandrEvent(connection.firstEvent(&xcb_randr_id)),
      m_rootEvents(connection.selectEvents(connection.root(),
                                           XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY)) {
    if (m_firstRandrEvent != 0) {
        (void)connection.reply(xcb_randr_query_version_reply, xcb_randr_query_version(connection.get(), 1, 5));
        xcb_randr_select_input(connection.get(), connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    m_events = connection.onEvent([this](const xcb_generic_event_t &event) { handle(event); });
    // Qt learns of changes on its own connection, before or after this one.
    const auto stale = [this] { m_isStale = true; };
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &m_context, stale);
    QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &m_context, stale);
    const auto watch = [this, stale](const QScreen *screen) {
        m_isStale = true;
        QObject::connect(screen, &QScreen::geometryChanged, &m_context, stale);
        QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &m_context, stale);
    };
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &m_context, watch);
    std::ranges::for_each(QGuiApplication::screens(), watch);
}

void X11Screens::handle(const xcb_generic_event_t &event) {
    const int type = eventType(event);
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto &change = eventAs<xcb_property_notify_event_t>(event);
        if (change.window != m_connection.root()) {
            return;
        }
        m_isMainStale |= change.atom == m_connection.atom("_NET_ACTIVE_WINDOW");
        for (const char *name : {"_NET_CLIENT_LIST", "_NET_WORKAREA", "_NET_CURRENT_DESKTOP"}) {
            m_isStale |= change.atom == m_connection.atom(name);
        }
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const xcb_window_t window = eventAs<xcb_configure_notify_event_t>(event).window;
        m_isStale |= window == m_connection.root();
        m_isMainStale |= window == m_activeWindow;
    } else if (m_firstRandrEvent != 0 && type >= m_firstRandrEvent && type <= m_firstRandrEvent + XCB_RANDR_NOTIFY) {
        m_isStale = true;
    }
}

void X11Screens::refresh() {
    if (!m_isStale) {
        return;
    }
    m_isStale = false;
    m_isMainStale = true;
    readMonitors();
    const std::vector<Strut> struts = readStruts();
    if (struts.empty()) {
        reserveByWorkAreas();
    }
    QRect all;
    for (const Monitor &monitor : m_monitors) {
        all |= monitor.pixels;
    }
    for (Monitor &monitor : m_monitors) {
        std::ranges::for_each(struts, [&](const Strut &strut) { cut(monitor, strut, all); });
        monitor.frame = toQt(monitor.pixels, monitor.scale, fromQRect(monitor.pixels));
        monitor.visibleFrame = toQt(monitor.pixels, monitor.scale, fromQRect(monitor.visiblePixels));
    }
}

void X11Screens::readMonitors() {
    m_monitors.clear();
    const auto answer = m_firstRandrEvent == 0
                            ? nullptr
                            : m_connection.reply(xcb_randr_get_monitors_reply,
                                                 xcb_randr_get_monitors(m_connection.get(), m_connection.root(), 1));
    if (answer) {
        for (auto info = xcb_randr_get_monitors_monitors_iterator(answer.get()); info.rem > 0;
             xcb_randr_monitor_info_next(&info)) {
            const QRect pixels(info.data->x, info.data->y, info.data->width, info.data->height);
            const Monitor monitor{pixels, pixels, scaleOf(pixels.topLeft()), {}, {}};
            m_monitors.insert(info.data->primary != 0 ? m_monitors.begin() : m_monitors.end(), monitor);
        }
    }
    if (m_monitors.empty()) {
        const QRect pixels(0, 0, m_connection.screen().width_in_pixels, m_connection.screen().height_in_pixels);
        m_monitors.push_back({pixels, pixels, scaleOf({}), {}, {}});
    }
}

std::vector<X11Screens::Strut> X11Screens::readStruts() {
    const auto windows = m_connection.values(m_connection.root(), "_NET_CLIENT_LIST");
    const xcb_atom_t partial = m_connection.atom("_NET_WM_STRUT_PARTIAL");
    const xcb_atom_t whole = m_connection.atom("_NET_WM_STRUT");
    std::vector<xcb_get_property_cookie_t> questions;
    for (const xcb_window_t window : windows) {
        questions.push_back(m_connection.askValues(window, partial));
        questions.push_back(m_connection.askValues(window, whole));
    }
    std::vector<Strut> struts;
    for (std::size_t i = 0; i + 1 < questions.size(); i += 2) {
        const auto ranges = m_connection.values(questions[i]);
        const auto edges = m_connection.values(questions[i + 1]);
        if (ranges.size() >= 12) {
            struts.push_back(strutFrom(ranges, 12));
        } else if (edges.size() >= 4) {
            struts.push_back(strutFrom(edges, 4));
        }
    }
    return struts;
}

/// Struts are measured from the edges of all monitors together, so each applies to the monitor in which it ends.
void X11Screens::cut(Monitor &monitor, const Strut &s, const QRect &all) {
    const QRect &frame = monitor.pixels;
    QRect &visible = monitor.visiblePixels;
    const auto spansRows = [&](std::size_t i) { return s[i] <= frame.bottom() && frame.top() <= s[i + 1]; };
    const auto spansColumns = [&](std::size_t i) { return s[i] <= frame.right() && frame.left() <= s[i + 1]; };
    const int left = s[0], right = all.right() - s[1], top = s[2], bottom = all.bottom() - s[3];
    if (s[0] > 0 && spansRows(4) && frame.left() < left && left <= frame.right()) {
        visible.setLeft(std::max(visible.left(), left));
    }
    if (s[1] > 0 && spansRows(6) && frame.left() <= right && right < frame.right()) {
        visible.setRight(std::min(visible.right(), right));
    }
    if (s[2] > 0 && spansColumns(8) && frame.top() < top && top <= frame.bottom()) {
        visible.setTop(std::max(visible.top(), top));
    }
    if (s[3] > 0 && spansColumns(10) && frame.top() <= bottom && bottom < frame.bottom()) {
        visible.setBottom(std::min(visible.bottom(), bottom));
    }
}

/// Where no window reserves an edge, the window manager may draw the desktop's bars itself. It then publishes what they
/// leave free: GNOME for each monitor, others as one rectangle for the whole desktop.
void X11Screens::reserveByWorkAreas() {
    const auto ask = [this](const QByteArray &name) { return m_connection.values(m_connection.root(), name); };
    const auto desktops = ask("_NET_CURRENT_DESKTOP");
    const std::size_t desktop = desktops.empty() ? 0 : desktops.front();
    const auto perMonitor = ask("_GTK_WORKAREAS_D" + QByteArray::number(static_cast<qulonglong>(desktop)));
    const auto common = ask("_NET_WORKAREA");
    for (Monitor &monitor : m_monitors) {
        QRect best;
        for (std::size_t i = 0; i + 3 < perMonitor.size(); i += 4) {
            const QRect inside = rectFrom(perMonitor, i) & monitor.pixels;
            best = area(inside) > area(best) ? inside : best;
        }
        if (best.isEmpty() && common.size() >= desktop * 4 + 4) {
            best = rectFrom(common, desktop * 4) & monitor.pixels;
        }
        monitor.visiblePixels = best.isEmpty() ? monitor.pixels : best;
    }
}

void X11Screens::findMain() {
    if (!std::exchange(m_isMainStale, false)) {
        return;
    }
    m_main = 0;
    const auto active = m_connection.values(m_connection.root(), "_NET_ACTIVE_WINDOW");
    m_activeWindow = active.empty() ? static_cast<xcb_window_t>(XCB_NONE) : active.front();
    if (m_activeWindow == XCB_NONE) {
        m_activeWindowEvents.reset();
        return;
    }
    // Its moves change the main screen. If the window is gone by now, the answers are errors, and the primary one
    // counts.
    m_activeWindowEvents = m_connection.selectEvents(m_activeWindow, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto sizeQuestion = xcb_get_geometry(m_connection.get(), m_activeWindow);
    const auto placeQuestion = xcb_translate_coordinates(m_connection.get(), m_activeWindow, m_connection.root(), 0, 0);
    const auto size = m_connection.reply(xcb_get_geometry_reply, sizeQuestion);
    const auto place = m_connection.reply(xcb_translate_coordinates_reply, placeQuestion);
    if (size && place) {
        const Point centre{place->dst_x + size->width / 2.0, place->dst_y + size->height / 2.0};
        m_main = static_cast<std::size_t>(monitorAt(centre) - m_monitors.data());
    }
}

const X11Screens::Monitor *X11Screens::monitorAt(Point pixel) const {
    return &*std::ranges::min_element(m_monitors, {}, [&](const Monitor &one) { return distance(one.pixels, pixel); });
}

Screen X11Screens::screenOf(const Monitor &monitor) const {
    const double left = m_monitors.front().frame.x;
    const double bottom = m_monitors.front().frame.maxY();
    const auto convert = [&](const Rect &rect) {
        return Rect{rect.x - left, bottom - rect.maxY(), rect.width, rect.height};
    };
    return {convert(monitor.frame), convert(monitor.visibleFrame)};
}

std::vector<Screen> X11Screens::screens() {
    refresh();
    std::vector<Screen> result;
    std::ranges::transform(m_monitors, std::back_inserter(result),
                           [this](const Monitor &one) { return screenOf(one); });
    return result;
}

std::optional<Screen> X11Screens::mainScreen() {
    refresh();
    findMain();
    return screenOf(m_monitors[m_main]);
}

Rect X11Screens::accessibilityRect(const Rect &pixels) {
    refresh();
    const Monitor *monitor = monitorAt({pixels.midX(), pixels.midY()});
    Rect rect = toQt(monitor->pixels, monitor->scale, pixels);
    rect.x -= m_monitors.front().frame.x;
    rect.y -= m_monitors.front().frame.y;
    return rect;
}

QPoint X11Screens::qtPosition(const Rect &screenRect) {
    refresh();
    return {static_cast<int>(std::lround(screenRect.x + m_monitors.front().frame.x)),
            static_cast<int>(std::lround(m_monitors.front().frame.maxY() - screenRect.maxY()))};
}

} // namespace platform::desktop
