// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/X11/Panel/PanelFrame.h"

#include "Platform/PanelWindow.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>

#include <xcb/shape.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace platform::desktop {

namespace {

constexpr double shadowOpacity = 0.42;
constexpr double shadowOpacityOnDark = 0.8;
const QColor outlineOnLight(188, 188, 194);
const QColor outlineOnDark(88, 89, 95);

/// Qt's own connection, which made the window: requests on another one could overtake Qt's. Null where Qt does not draw
/// on X11.
xcb_connection_t *qtConnection() {
    const auto *native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native != nullptr ? native->connection() : nullptr;
}

void setShape(xcb_window_t window, xcb_shape_kind_t kind, const QRegion &region) {
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect &rect : region) {
        rectangles.push_back({static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
                              static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())});
    }
    xcb_shape_rectangles(qtConnection(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

/// The pixels of a rounded rectangle, row by row: a polygon's region has flattened corners.
QRegion roundedRegion(const QRect &rect, double radius) {
    const int rows = std::min(static_cast<int>(std::ceil(radius)), rect.height() / 2);
    std::vector<QRect> bands{rect.adjusted(0, rows, 0, -rows)};
    for (int row = 0; row < rows; ++row) {
        const double up = radius - row - 0.5;
        const int inset = static_cast<int>(std::lround(radius - std::sqrt(radius * radius - up * up)));
        bands.emplace_back(rect.left() + inset, rect.top() + row, rect.width() - 2 * inset, 1);
        bands.emplace_back(rect.left() + inset, rect.bottom() - row, rect.width() - 2 * inset, 1);
    }
    QRegion region;
    for (const QRect &band : bands) {
        region += band;
    }
    return region;
}

} // namespace

PanelFrame::PanelFrame(xcb_atom_t shadowHint)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    create();
    if (xcb_connection_t *connection = qtConnection(); connection != nullptr) {
        const std::uint32_t none = 0;
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(winId()), shadowHint,
                            XCB_ATOM_CARDINAL, 32, 1, &none);
    }
}

PanelFrame::~PanelFrame() {
    if (m_content) {
        m_content->setParent(nullptr);
    }
}

void PanelFrame::setContent(QWidget *content) {
    if (content == m_content) {
        return;
    }
    if (m_content) {
        m_content->setParent(nullptr);
    }
    m_content = content;
    content->setParent(this);
    content->show();
}

void PanelFrame::setComposited(bool composited) {
    if (composited == m_composited) {
        return;
    }
    m_composited = composited;
    const QRect geometry = m_contentGeometry;
    m_contentGeometry = {};
    setContentGeometry(geometry);
    update();
}

void PanelFrame::setContentGeometry(const QRect &geometry) {
    if (geometry != m_contentGeometry) {
        m_contentGeometry = geometry;
        setGeometry(geometry.adjusted(-margin(), -margin(), margin(), margin()));
    }
    if (m_content) {
        m_content->setGeometry(QRect({margin(), margin()}, geometry.size()));
    }
    applyShape();
}

QList<QRectF> PanelFrame::shape() const {
    const QVariantList list = m_content ? m_content->property(panelShapeProperty).toList() : QVariantList();
    QList<QRectF> result;
    for (const QVariant &one : list) {
        result.append(one.toRectF().translated(margin(), margin()));
    }
    return result.isEmpty() ? QList<QRectF>{QRectF(QPointF(margin(), margin()), m_contentGeometry.size())} : result;
}

double PanelFrame::cornerRadius() const {
    return m_content ? m_content->property(panelCornerRadiusProperty).toDouble() : 0;
}

void PanelFrame::applyShape() {
    if (qtConnection() == nullptr) {
        return;
    }
    const double scale = devicePixelRatioF();
    const int line = qRound(outlineWidth * scale);
    QRegion filled;
    QRegion outline;
    for (const QRectF &one : shape()) {
        const QRectF native(one.topLeft() * scale, one.size() * scale);
        filled += native.toAlignedRect();
        outline +=
            roundedRegion(native.toAlignedRect().adjusted(-line, -line, line, line), cornerRadius() * scale + line);
    }
    const QRegion whole(0, 0, qRound(width() * scale), qRound(height() * scale));
    const auto window = static_cast<xcb_window_t>(winId());
    setShape(window, XCB_SHAPE_SK_BOUNDING, m_composited ? whole : outline);
    setShape(window, XCB_SHAPE_SK_INPUT, filled);
}

void PanelFrame::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    const QColor ground = palette().color(QPalette::Active, QPalette::Base);
    if (!m_composited) {
        paintOpaque(painter, event->rect(), ground);
        return;
    }
    const double opacity = ground.lightness() < 128 ? shadowOpacityOnDark : shadowOpacity;
    const double radius = cornerRadius();
    const QList<QRectF> cards = shape();
    const bool onlyInside = std::any_of(cards.begin(), cards.end(), [&](const QRectF &card) {
        return card.adjusted(1, radius, -1, -radius).contains(event->rect());
    });
    if (onlyInside) {
        return;
    }
    for (const QRectF &card : cards) {
        m_shadow.paint(painter, card, radius, opacity);
    }
}

void PanelFrame::paintOpaque(QPainter &painter, const QRect &rect, const QColor &ground) const {
    painter.fillRect(rect, ground.lightness() < 128 ? outlineOnDark : outlineOnLight);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    for (const QRectF &card : shape()) {
        painter.drawRoundedRect(card, cornerRadius(), cornerRadius());
    }
}

} // namespace platform::desktop
