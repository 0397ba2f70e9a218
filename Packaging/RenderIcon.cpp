// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

/// Renders the program's icon at build time: render-icon SOURCE.svg SIZE TARGET.png
int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int size = arguments.value(2).toInt();
    QSvgRenderer source(arguments.value(1));
    if (arguments.size() != 4 || size <= 0 || !source.isValid()) {
        return 2;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    source.render(&painter);
    painter.end();
    return image.save(arguments.value(3)) ? 0 : 1;
}
