// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Symbols.h"

#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

namespace quillory::ui {

namespace {

QImage drawnShape(const QString &name, int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(QStringLiteral(":/quillory/%1.svg").arg(name));
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

// A handful of symbols in one or two sizes: kept for good.
QImage shape(const QString &name, int side) {
    static QHash<std::pair<QString, int>, QImage> shapes;
    const auto key = std::pair(name, side);
    if (const auto found = shapes.constFind(key); found != shapes.constEnd()) {
        return *found;
    }
    return *shapes.insert(key, drawnShape(name, side));
}

class SymbolEngine final : public QIconEngine {
  public:
    explicit SymbolEngine(QString name) : m_name(std::move(name)) {}
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        drawSymbol(*painter, rect, m_name, painter->pen().color());
    }
    [[nodiscard]] QIconEngine *clone() const override { return new SymbolEngine(m_name); }
    QString iconName() override { return m_name; }

  private:
    QString m_name;
};

} // namespace

double symbolSide(double points) {
    return std::round(points * 1.25);
}

void drawSymbol(QPainter &painter, const QRectF &rect, const QString &name, const QBrush &brush) {
    // Not the device's own scale: a widget that is drawn into a picture has that of the picture.
    const double scale = painter.deviceTransform().m11();
    QImage image = shape(name, static_cast<int>(std::lround(rect.width() * scale)));
    QPainter tint(&image);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.scale(scale, scale);
    tint.translate(-rect.topLeft());
    tint.fillRect(rect, brush);
    tint.end();
    image.setDevicePixelRatio(scale);
    painter.drawImage(rect.topLeft(), image);
}

QIcon symbolIcon(const QString &name) {
    return QIcon(new SymbolEngine(name));
}

} // namespace quillory::ui
