// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace quillory::ui {

/// How the program's windows look: Fusion, with the controls of forms drawn in the program's own way, in the colours of
/// the desktop's palette. A check box is a row with a switch, a spin box a pair of arrows (its number is shown in its
/// label), a flat button a symbol and a text in the accent colour, a tab a large button with its symbol above its
/// label.
class FormStyle final : public QProxyStyle {
  public:
    /// Gives all windows of the application this style. Further calls do nothing.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *result) const override;
    void polish(QWidget *widget) override;
    void polish(QPalette &palette) override;

    /// Leaves turns of the wheel over a control to the page, which scrolls, unless the control has the focus.
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    FormStyle();
};

} // namespace quillory::ui
