// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Panel/QtPanelWindow.h"

#include <QEasingCurve>

#include <algorithm>
#include <cmath>

namespace platform::desktop {

namespace {

// Positions on an X11 screen have 16 bits.
constexpr double farthest = 30000;

double withinReach(double value) {
    return std::isnan(value) ? 0 : std::clamp(value, -farthest, farthest);
}

int wholePoints(double value) {
    return static_cast<int>(std::lround(withinReach(value)));
}

} // namespace

QtPanelWindow::QtPanelWindow(X11Screens &screens)
    : m_screens(screens), m_window(screens.connection().atom("_COMPTON_SHADOW")),
      m_compositor(screens.connection(), screens.connection().ofScreen("_NET_WM_CM_S"),
                   [this](const auto &change) { setComposited(change.owner != XCB_NONE); }) {
    setComposited(m_compositor.isOwned());
    m_apply.setSingleShot(true);
    m_apply.setInterval(0);
    m_apply.callOnTimeout([this] { applyGeometry(); });
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    QEasingCurve easeOut(QEasingCurve::BezierSpline);
    easeOut.addCubicBezierSegment({0, 0}, {0.58, 1}, {1, 1});
    m_animation.setEasingCurve(easeOut);
    QObject::connect(&m_animation, &QVariantAnimation::valueChanged, &m_window,
                     [this](const QVariant &value) { animateTo(value.toDouble()); });
}

void QtPanelWindow::setComposited(bool composited) {
    m_isComposited = composited;
    m_window.setComposited(composited);
    applyAlpha();
}

void QtPanelWindow::setContentView(QObject *view) {
    m_window.setContent(static_cast<QWidget *>(view));
}

void QtPanelWindow::setContentSize(Size size) {
    m_frame.width = size.width;
    m_frame.height = size.height;
    m_apply.start();
}

void QtPanelWindow::setFrameOrigin(Point origin) {
    const bool isUnderway = m_flight.moves && origin == m_flight.to;
    if (isUnderway) {
        return;
    }
    m_flight.moves = false;
    m_frame.x = origin.x;
    m_frame.y = origin.y;
    m_apply.start();
}

void QtPanelWindow::setAlpha(double alpha) {
    m_flight.fades = false;
    m_alpha = std::clamp(alpha, 0.0, 1.0);
    applyAlpha();
}

void QtPanelWindow::orderFrontRegardless() {
    applyGeometry();
    m_window.show();
    m_window.raise();
}

void QtPanelWindow::orderOut() {
    m_animation.stop();
    m_flight = {};
    m_window.hide();
}

void QtPanelWindow::animate(Point origin, double alpha, std::chrono::milliseconds duration) {
    m_animation.stop();
    m_flight = {m_frame.origin(), origin, m_alpha, std::clamp(alpha, 0.0, 1.0), true, true};
    m_animation.setDuration(static_cast<int>(duration.count()));
    m_animation.start();
}

void QtPanelWindow::animateTo(double progress) {
    if (m_flight.moves) {
        m_frame.x = std::lerp(m_flight.from.x, m_flight.to.x, progress);
        m_frame.y = std::lerp(m_flight.from.y, m_flight.to.y, progress);
        applyGeometry();
    }
    if (m_flight.fades) {
        m_alpha = std::lerp(m_flight.fromAlpha, m_flight.toAlpha, progress);
        applyAlpha();
    }
    if (progress >= 1) {
        m_flight = {};
    }
}

void QtPanelWindow::applyGeometry() {
    m_apply.stop();
    const QSize size(wholePoints(std::max(1.0, m_frame.width)), wholePoints(std::max(1.0, m_frame.height)));
    const double x = withinReach(m_frame.x);
    const double y = withinReach(m_frame.y);
    const QPoint place = m_screens.qtPosition({x, y, double(size.width()), double(size.height())});
    m_window.setContentGeometry({place, size});
}

void QtPanelWindow::applyAlpha() {
    m_window.setWindowOpacity(m_isComposited ? m_alpha : 1);
}

std::unique_ptr<PanelWindow> QtPanelWindows::create() {
    return std::make_unique<QtPanelWindow>(m_screens);
}

} // namespace platform::desktop
