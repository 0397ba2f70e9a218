// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Panel/PanelShadow.h"

#include <QPointer>
#include <QWidget>

#include <xcb/xcb.h>

namespace platform::desktop {

/// The native window of a panel: an override-redirect window, which no window manager focuses, moves, decorates or
/// keeps on one workspace. While a compositor runs it has a margin around its content for the shadow; clicks go through
/// the margin and the gaps. Without a compositor it is opaque, cut to the content's shape, with a line around it.
class PanelFrame final : public QWidget {
  public:
    /// shadowHint: the atom of the property by which picom and similar compositors are told to draw no shadow. Ours
    /// follows the cards, theirs the whole rectangle.
    explicit PanelFrame(xcb_atom_t shadowHint);
    ~PanelFrame() override;
    PanelFrame(const PanelFrame &) = delete;
    PanelFrame &operator=(const PanelFrame &) = delete;

    void setContent(QWidget *content);
    void setComposited(bool composited);
    /// Moves and resizes in one step. The rectangle is the content's, in Qt's coordinates.
    void setContentGeometry(const QRect &geometry);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    /// The line that sets an opaque panel off from what lies behind it, in points.
    static constexpr int outlineWidth = 1;
    [[nodiscard]] int margin() const { return m_composited ? PanelShadow::extent : outlineWidth; }
    [[nodiscard]] QList<QRectF> shape() const;
    [[nodiscard]] double cornerRadius() const;
    void applyShape();
    void paintOpaque(QPainter &painter, const QRect &rect, const QColor &ground) const;

    QPointer<QWidget> m_content;
    QRect m_contentGeometry;
    PanelShadow m_shadow;
    bool m_composited = false;
};

} // namespace platform::desktop
