// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Panel/PanelFrame.h"
#include "Platform/Linux/X11/X11Screens.h"
#include "Platform/Linux/X11/X11SelectionWatch.h"
#include "Platform/PanelWindow.h"

#include <QTimer>
#include <QVariantAnimation>

namespace platform::desktop {

/// A panel window on X11. Without a compositor it cannot be translucent and only moves where it would fade. It is
/// raised when told to, not whenever it is covered: a menu or the lock screen belongs above it.
class QtPanelWindow final : public PanelWindow {
  public:
    explicit QtPanelWindow(X11Screens &screens);

    void setContentView(QObject *view) override;
    void setContentSize(Size size) override;
    void setFrameOrigin(Point origin) override;
    [[nodiscard]] Rect frame() const override { return m_frame; }
    void setAlpha(double alpha) override;
    void orderFrontRegardless() override;
    void orderOut() override;
    [[nodiscard]] bool isVisible() const override { return m_window.isVisible(); }
    void animate(Point origin, double alpha, std::chrono::milliseconds duration) override;

    /// The widget behind it, for tests.
    [[nodiscard]] PanelFrame &window() { return m_window; }

  private:
    void setComposited(bool composited);
    void animateTo(double progress);
    void applyGeometry();
    void applyAlpha();

    X11Screens &m_screens;
    PanelFrame m_window;
    /// A compositing manager, which is what makes windows translucent, owns a selection while it runs.
    X11SelectionWatch m_compositor;
    bool m_isComposited = false;
    Rect m_frame;
    double m_alpha = 1;
    /// A new size is mostly followed by a new place: applied together they do not flicker.
    QTimer m_apply;
    struct Flight {
        Point from;
        Point to;
        double fromAlpha = 1;
        double toAlpha = 1;
        bool moves = false;
        bool fades = false;
    };
    Flight m_flight;
    QVariantAnimation m_animation;
};

class QtPanelWindows final : public PanelWindows {
  public:
    /// screens: converts screen coordinates to Qt's; outlives this and the panels.
    explicit QtPanelWindows(X11Screens &screens) : m_screens(screens) {}
    [[nodiscard]] std::unique_ptr<PanelWindow> create() override;

  private:
    X11Screens &m_screens;
};

} // namespace platform::desktop
