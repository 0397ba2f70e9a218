// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/FormStyle.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOption>
#include <QTabBar>
#include <QVariantAnimation>

#include <algorithm>
#include <cmath>

namespace quillory::ui {

namespace {

constexpr double controlHeight = 26;
constexpr double controlRadius = 6;
constexpr int buttonPadding = 14;
constexpr double fieldPadding = 7;
constexpr double fieldFrame = 5;
constexpr int flatPadding = 5;
constexpr double arrowWidth = 22;
constexpr double stepperWidth = 20;
constexpr double switchWidth = 34;
constexpr double switchHeight = 20;
constexpr int switchGap = 12;
constexpr double sliderExtent = 22;
constexpr double knobExtent = 16;
constexpr double grooveExtent = 4;
constexpr int scrollBarExtent = 11;
constexpr double scrollHandleExtent = 6;
constexpr int leastScrollHandle = 28;
constexpr double tabSymbolPoints = 15;
constexpr double leastTabWidth = 76;
constexpr int tabPadding = 12;
constexpr int tabTopPadding = 6;
constexpr double tabRadius = 8;

/// A painter for round shapes, which gives back the state in which it was taken.
class Drawing {
  public:
    explicit Drawing(QPainter *painter) : m_painter(*painter) {
        m_painter.save();
        m_painter.setRenderHint(QPainter::Antialiasing);
    }
    ~Drawing() { m_painter.restore(); }
    Drawing(const Drawing &) = delete;
    Drawing &operator=(const Drawing &) = delete;

    void fill(const QRectF &rect, double radius, const QColor &color) const { draw(rect, radius, Qt::NoPen, color); }
    void outline(const QRectF &rect, double radius, const QColor &color, double width = 1) const {
        const double half = width / 2;
        draw(rect.adjusted(half, half, -half, -half), radius - half, QPen(color, width), Qt::NoBrush);
    }
    void arrow(const QPointF &tip, double reach, int direction, const QColor &color) const {
        m_painter.setPen(QPen(color, 1.5 * textScale(), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const double base = tip.y() + direction * reach;
        m_painter.drawPolyline(QPolygonF{{tip.x() - reach, base}, tip, {tip.x() + reach, base}});
    }
    void symbol(const QRectF &rect, const QIcon &icon, const QColor &color) const {
        drawSymbol(m_painter, rect, icon.name(), color);
    }
    void text(const QRect &rect, int flags, const QString &text, const QColor &color) const {
        m_painter.setPen(color);
        m_painter.drawText(rect, flags, text);
    }

  private:
    void draw(const QRectF &rect, double radius, const QPen &pen, const QBrush &brush) const {
        m_painter.setPen(pen);
        m_painter.setBrush(brush);
        m_painter.drawPath(continuousRoundedRect(rect, radius));
    }

    QPainter &m_painter;
};

QColor ink(const QStyleOption &option, double opacity) {
    return faded(lookOf(option.palette).primary, option.state & QStyle::State_Enabled ? opacity : opacity / 2);
}

QColor accent(const QStyleOption &option) {
    return tintColor(option.palette, Tint::accent);
}

/// Whether a control has to show that it has the focus: once the user has moved the focus by keyboard.
bool showsFocus(const QStyleOption &option) {
    return option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
}

bool isHovered(const QStyleOption &option) {
    return option.state & QStyle::State_MouseOver && option.state & QStyle::State_Enabled;
}

/// What can be pressed: push buttons, pop-ups and steppers.
void paintPanel(const Drawing &drawing, const QStyleOption &option) {
    const QRectF frame(option.rect);
    drawing.fill(frame, controlRadius, isDark(option.palette) ? QColor(255, 255, 255, 26) : QColor(Qt::white));
    const double press = option.state & QStyle::State_Sunken ? 0.12 : isHovered(option) ? 0.05 : 0;
    drawing.fill(frame, controlRadius, ink(option, press));
    if (showsFocus(option)) {
        drawing.outline(frame, controlRadius, accent(option), 2);
    } else {
        drawing.outline(frame, controlRadius, ink(option, 0.25));
    }
}

/// What can be written into.
void paintField(const Drawing &drawing, const QStyleOption &option) {
    const QRectF frame(option.rect);
    drawing.fill(frame, controlRadius, option.palette.color(QPalette::Base));
    if (option.state & QStyle::State_HasFocus) {
        drawing.outline(frame, controlRadius, accent(option), 2);
    } else {
        drawing.outline(frame, controlRadius, faded(lookOf(option.palette).primary, 0.25));
    }
}

void paintButton(const Drawing &drawing, const QStyleOptionButton &option) {
    if (!(option.features & QStyleOptionButton::Flat)) {
        paintPanel(drawing, option);
        if (option.features & QStyleOptionButton::DefaultButton && !showsFocus(option)) {
            drawing.outline(option.rect, controlRadius, accent(option), 1.5);
        }
        return;
    }
    const double press = option.state & QStyle::State_Sunken ? 0.12 : isHovered(option) ? 0.07 : 0;
    drawing.fill(option.rect, controlRadius, ink(option, press));
    if (showsFocus(option)) {
        drawing.outline(option.rect, controlRadius, accent(option), 2);
    }
}

/// A flat button's symbol and text; a symbol without a text is less of a call to act.
void paintFlatLabel(const Drawing &drawing, const QStyleOptionButton &option, int textFlags) {
    const QColor color = option.text.isEmpty() ? lookOf(option.palette).secondary : accent(option);
    const double side = option.iconSize.width();
    const double left = option.text.isEmpty() ? (option.rect.width() - side) / 2 : flatPadding;
    const QRectF symbol(option.rect.left() + left, option.rect.top() + std::round((option.rect.height() - side) / 2),
                        side, side);
    drawing.symbol(symbol, option.icon, color);
    drawing.text(option.rect.adjusted(flatPadding + qRound(side) + flatPadding, 0, 0, 0),
                 textFlags | Qt::AlignLeft | Qt::AlignVCenter, option.text, color);
}

/// How far the knob of a switch has gone, from 0 to 1.
double knobPlace(const QStyleOption &option, const QWidget *widget) {
    const auto *slide = widget != nullptr ? widget->findChild<const QVariantAnimation *>() : nullptr;
    if (slide != nullptr && slide->state() == QAbstractAnimation::Running) {
        return slide->currentValue().toDouble();
    }
    return option.state & QStyle::State_On ? 1 : 0;
}

/// A label, and a switch at the other end of the row.
void paintSwitchRow(const Drawing &drawing, const QStyleOptionButton &option, double place, int textFlags) {
    const QRect row = option.rect.marginsRemoved(rowMargins());
    drawing.text(row, textFlags | Qt::AlignLeft | Qt::AlignVCenter, option.text, ink(option, 1));
    QRectF track(0, 0, scaled(switchWidth), scaled(switchHeight));
    track.moveTopRight({row.right() + 1.0, std::round(row.top() + (row.height() - track.height()) / 2)});
    const double radius = track.height() / 2;
    if (showsFocus(option)) {
        drawing.outline(track.adjusted(-3, -3, 3, 3), radius + 3, accent(option), 2);
    }
    drawing.fill(track, radius, ink(option, 0.35 * (1 - place)));
    drawing.fill(track, radius, faded(option.palette.color(QPalette::Highlight), place));
    const double side = track.height() - 4;
    const QRectF knob(track.left() + 2 + place * (track.width() - track.height()), track.top() + 2, side, side);
    drawing.fill(knob.translated(0, 0.8), side / 2, QColor(0, 0, 0, 40));
    drawing.fill(knob, side / 2, Qt::white);
}

void paintTab(const Drawing &drawing, const QStyleOption &option) {
    const QRectF tab = QRectF(option.rect).adjusted(1, 1, -1, -1);
    const bool isCurrent = option.state & QStyle::State_Selected;
    drawing.fill(tab, tabRadius, ink(option, isCurrent ? 0.09 : isHovered(option) ? 0.045 : 0));
    if (isCurrent && showsFocus(option)) {
        drawing.outline(tab, tabRadius, accent(option), 2);
    }
}

void paintTabLabel(const Drawing &drawing, const QStyleOptionTab &option, int textFlags) {
    const QRect tab = option.rect;
    const QColor color = option.state & QStyle::State_Selected ? accent(option) : lookOf(option.palette).secondary;
    const double side = symbolSide(tabSymbolPoints * textScale());
    drawing.symbol({std::round(tab.center().x() - side / 2), double(tab.top() + tabTopPadding), side, side},
                   option.icon, color);
    drawing.text(tab.adjusted(0, 0, 0, -tabTopPadding), textFlags | Qt::AlignHCenter | Qt::AlignBottom, option.text,
                 color);
}

void paintPopUp(const Drawing &drawing, const QStyleOptionComplex &option) {
    paintPanel(drawing, option);
    const double reach = 3.2 * textScale();
    const QPointF middle(option.rect.right() - scaled(arrowWidth) / 2.0, QRectF(option.rect).center().y());
    drawing.arrow(middle - QPointF(0, reach + 1.6), reach, 1, ink(option, 0.8));
    drawing.arrow(middle + QPointF(0, reach + 1.6), reach, -1, ink(option, 0.8));
}

void paintStepper(const Drawing &drawing, const QStyleOptionSpinBox &option) {
    QStyleOptionSpinBox panel(option);
    panel.state &= ~QStyle::State_Sunken;
    paintPanel(drawing, panel);
    const double reach = 3.8 * textScale();
    for (const int direction : {1, -1}) {
        const bool isUp = direction > 0;
        const bool isPossible =
            option.stepEnabled & (isUp ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
        const bool isPressed = option.state & QStyle::State_Sunken &&
                               option.activeSubControls & (isUp ? QStyle::SC_SpinBoxUp : QStyle::SC_SpinBoxDown);
        const QPointF middle = QRectF(option.rect).center();
        drawing.arrow(middle - QPointF(0, direction * (reach + 2.2)), reach, direction,
                      isPressed ? accent(option) : ink(option, isPossible ? 0.8 : 0.3));
    }
}

void paintSlider(const Drawing &drawing, const QStyleOptionSlider &option, const QRectF &handle) {
    const double extent = grooveExtent * textScale();
    const QRectF groove(option.rect.left() + 3, handle.center().y() - extent / 2, option.rect.width() - 6, extent);
    QRectF filled = groove;
    filled.setRight(handle.center().x());
    drawing.fill(groove, extent / 2, ink(option, 0.22));
    drawing.fill(filled, extent / 2, option.palette.color(QPalette::Highlight));
    const double side = knobExtent * textScale();
    QRectF knob(0, 0, side, side);
    knob.moveCenter(handle.center());
    drawing.fill(knob, side / 2, Qt::white);
    drawing.outline(knob, side / 2, QColor(0, 0, 0, option.state & QStyle::State_Sunken ? 130 : 90));
    if (showsFocus(option)) {
        drawing.outline(knob.adjusted(-3, -3, 3, 3), side / 2 + 3, accent(option), 2);
    }
}

/// Only a handle, and nothing at all while there is nothing to scroll.
void paintScrollBar(const Drawing &drawing, const QStyleOptionSlider &option, const QRectF &slider) {
    if (option.maximum <= option.minimum) {
        return;
    }
    const bool isUpright = option.orientation == Qt::Vertical;
    const double side = ((isUpright ? slider.width() : slider.height()) - scrollHandleExtent) / 2;
    const QRectF handle = isUpright ? slider.adjusted(side, 2, -side, -2) : slider.adjusted(2, side, -2, -side);
    const bool isPressed = option.state & QStyle::State_Sunken;
    drawing.fill(handle, scrollHandleExtent / 2, ink(option, isPressed ? 0.55 : isHovered(option) ? 0.45 : 0.35));
}

QRect stepperPart(QRect rect, QStyle::SubControl part) {
    const int middle = rect.center().y();
    if (part == QStyle::SC_SpinBoxUp) {
        rect.setBottom(middle);
    } else if (part == QStyle::SC_SpinBoxDown) {
        rect.setTop(middle + 1);
    } else if (part == QStyle::SC_SpinBoxEditField) {
        rect = {};
    }
    return rect;
}

/// Slides the knob when the check box is switched where it can be seen.
void animateSwitch(QCheckBox &box) {
    auto *const slide = new QVariantAnimation(&box);
    slide->setDuration(140);
    slide->setEasingCurve(easeOut());
    QObject::connect(slide, &QVariantAnimation::valueChanged, &box, [&box] { box.update(); });
    QObject::connect(&box, &QCheckBox::toggled, slide, [slide, &box](bool isOn) {
        slide->stop();
        slide->setStartValue(isOn ? 0.0 : 1.0);
        slide->setEndValue(isOn ? 1.0 : 0.0);
        if (box.isVisible()) {
            slide->start();
        }
    });
}

} // namespace

FormStyle::FormStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void FormStyle::install() {
    if (dynamic_cast<FormStyle *>(QApplication::style()) == nullptr) {
        QApplication::setStyle(new FormStyle);
    }
}

void FormStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const {
    if (element == PE_PanelLineEdit || (element == PE_Frame && qobject_cast<const QPlainTextEdit *>(widget))) {
        paintField(Drawing(painter), *option);
    } else if (element != PE_FrameFocusRect) { // each control shows in its own way that it has the focus
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void FormStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const {
    const int textFlags =
        proxy()->styleHint(SH_UnderlineShortcut, option, widget) != 0 ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option);
    if (element == CE_CheckBox && button != nullptr) {
        paintSwitchRow(Drawing(painter), *button, knobPlace(*option, widget), textFlags);
    } else if (element == CE_PushButtonBevel && button != nullptr) {
        paintButton(Drawing(painter), *button);
    } else if (element == CE_PushButtonLabel && button != nullptr && button->features & QStyleOptionButton::Flat) {
        paintFlatLabel(Drawing(painter), *button, textFlags);
    } else if (element == CE_TabBarTabShape && tab != nullptr) {
        paintTab(Drawing(painter), *tab);
    } else if (element == CE_TabBarTabLabel && tab != nullptr) {
        paintTabLabel(Drawing(painter), *tab, textFlags);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void FormStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                   const QWidget *widget) const {
    const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
    const auto *spinBox = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
    if (control == CC_ComboBox) {
        paintPopUp(Drawing(painter), *option);
    } else if (control == CC_SpinBox && spinBox != nullptr) {
        paintStepper(Drawing(painter), *spinBox);
    } else if (control == CC_Slider && slider != nullptr) {
        paintSlider(Drawing(painter), *slider, subControlRect(CC_Slider, option, SC_SliderHandle, widget));
    } else if (control == CC_ScrollBar && slider != nullptr) {
        paintScrollBar(Drawing(painter), *slider, subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget));
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QRect FormStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const {
    if (element == SE_LineEditContents) {
        const int padding = scaled(fieldPadding) - 2; // QLineEdit adds two points of its own
        return option->rect.adjusted(padding, 0, -padding, 0);
    }
    return element == SE_CheckBoxClickRect ? option->rect : QProxyStyle::subElementRect(element, option, widget);
}

QRect FormStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                const QWidget *widget) const {
    if (control == CC_SpinBox) {
        return stepperPart(option->rect, part);
    }
    if (control == CC_ComboBox && part == SC_ComboBoxEditField) {
        return option->rect.adjusted(scaled(fieldPadding), 0, -scaled(arrowWidth), 0);
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize FormStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                  const QWidget *widget) const {
    const int height = std::max(scaled(controlHeight), option->fontMetrics.height() + 6);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    const int symbol = qRound(symbolSide(tabSymbolPoints * textScale()));
    switch (type) {
    case CT_PushButton:
        if (button != nullptr && button->features & QStyleOptionButton::Flat) {
            return button->text.isEmpty() ? QSize(height, height) : QSize(contents.width() + 3 * flatPadding, height);
        }
        return {contents.width() + 2 * buttonPadding, height};
    case CT_CheckBox:
        return QSize(contents.width() + switchGap + scaled(switchWidth), height).grownBy(rowMargins());
    case CT_ComboBox:
        return {contents.width() + 2 * scaled(fieldPadding) + scaled(arrowWidth), height};
    case CT_SpinBox:
        return {scaled(stepperWidth), height};
    case CT_LineEdit:
        return {contents.width() + 2 * scaled(fieldPadding), height};
    case CT_TabBarTab:
        return {std::max(scaled(leastTabWidth), contents.width() - symbol + 2 * tabPadding),
                2 * tabTopPadding + symbol + option->fontMetrics.height()};
    default:
        return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

int FormStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    switch (metric) {
    case PM_SliderLength:
    case PM_SliderThickness:
    case PM_SliderControlThickness:
        return scaled(sliderExtent);
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    case PM_ScrollBarSliderMin:
        return leastScrollHandle;
    case PM_ButtonIconSize:
    case PM_TabBarIconSize:
        return qRound(symbolSide(bodyPoints * textScale()));
    case PM_DefaultFrameWidth:
        return qobject_cast<const QPlainTextEdit *>(widget) != nullptr
                   ? scaled(fieldFrame)
                   : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_TabBarTabHSpace:
    case PM_TabBarTabVSpace:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int FormStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                         QStyleHintReturn *result) const {
    if (hint == SH_TabBar_ElideMode) {
        return Qt::ElideNone;
    }
    return QProxyStyle::styleHint(hint, option, widget, result);
}

void FormStyle::polish(QWidget *widget) {
    QProxyStyle::polish(widget);
    if (auto *const box = qobject_cast<QCheckBox *>(widget)) {
        animateSwitch(*box);
    } else if (qobject_cast<QTabBar *>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_Hover);
    } else if (qobject_cast<QComboBox *>(widget) != nullptr || qobject_cast<QSlider *>(widget) != nullptr ||
               qobject_cast<QAbstractSpinBox *>(widget) != nullptr ||
               qobject_cast<QPlainTextEdit *>(widget->parentWidget()) != nullptr) {
        widget->installEventFilter(this);
    }
}

// Fusion's colour for placeholders can be one that cannot be read.
void FormStyle::polish(QPalette &palette) {
    QProxyStyle::polish(palette);
    palette.setColor(QPalette::PlaceholderText, lookOf(palette).secondary);
}

bool FormStyle::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus()) {
        event->ignore();
        return true;
    }
    return QProxyStyle::eventFilter(watched, event);
}

} // namespace quillory::ui
