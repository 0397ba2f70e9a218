// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/Form.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillory::ui {

namespace {

constexpr double boxRadius = 9;
constexpr int hairlineInset = 12;
constexpr double rowHeight = 35;

bool isDark(const QWidget &widget) {
    return lookOf(widget).primary.lightness() > 128;
}

QColor mixed(const QColor &a, const QColor &b, double share) {
    const auto part = [share](int from, int to) { return qRound(from + (to - from) * share); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

/// The relative luminance and the contrast by which legibility is judged.
double luminance(const QColor &color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &a, const QColor &b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The desktop's accent, moved away from the background as far as text needs it.
QColor legibleAccent(const QWidget &widget) {
    constexpr double enough = 4.5;
    const QColor primary(widget.palette().color(QPalette::WindowText));
    const QColor background = mixed(widget.palette().color(QPalette::Window), primary, 0.09); // that of a chosen tab
    const QColor accent = widget.palette().color(QPalette::Highlight);
    QColor color = accent;
    for (double share = 0; contrast(color, background) < enough && share <= 1; share += 0.05) {
        color = mixed(accent, primary, share);
    }
    return color;
}

/// The rows' background and the lines between them.
class FormBox final : public QWidget {
  public:
    FormBox() : m_rows(new QVBoxLayout(this)) {
        m_rows->setContentsMargins(0, 0, 0, 0);
        m_rows->setSpacing(1);
    }
    QVBoxLayout *rows() { return m_rows; }

  protected:
    void paintEvent(QPaintEvent * /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor line = faded(lookOf(*this).primary, isDark(*this) ? 0.10 : 0.08);
        painter.setPen(QPen(line, 1));
        painter.setBrush(mixed(palette().color(QPalette::Window), Qt::white, isDark(*this) ? 0.05 : 0.6));
        painter.drawPath(continuousRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), boxRadius));
        bool isFirst = true;
        for (int i = 0; i < m_rows->count(); ++i) {
            const QLayoutItem &row = *m_rows->itemAt(i);
            if (!row.isEmpty() && !std::exchange(isFirst, false)) {
                painter.fillRect(hairlineInset, row.geometry().top() - 1, width() - 2 * hairlineInset, 1, line);
            }
        }
    }

  private:
    QVBoxLayout *m_rows;
};

class WheelGuard final : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus()) {
            event->ignore();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

double textScale() {
    // What desktops come with: 10 points, or 11 on some, at a screen of 96 dots per inch.
    constexpr double usualPixels = 10 * 96.0 / 72;
    const QFont font = QGuiApplication::font();
    const QScreen *screen = QGuiApplication::primaryScreen();
    const double dots = screen != nullptr ? screen->logicalDotsPerInchY() : 96;
    const double pixels = font.pointSizeF() > 0 ? font.pointSizeF() * dots / 72 : font.pixelSize();
    return std::max(1.0, pixels / usualPixels);
}

QFont formFont(double points, QFont::Weight weight) {
    return systemFont(points * textScale(), weight);
}

int scaled(double points) {
    return qRound(points * textScale());
}

QColor tintColor(const QWidget &widget, Tint tint) {
    const bool dark = isDark(widget);
    switch (tint) {
    case Tint::secondary:
        return lookOf(widget).secondary;
    case Tint::accent:
        return legibleAccent(widget);
    case Tint::good:
        return dark ? QColor(0x5b, 0xc8, 0x6b) : QColor(0x17, 0x78, 0x33);
    case Tint::warning:
        return dark ? QColor(0xf2, 0x9a, 0x4a) : QColor(0xb2, 0x55, 0x00);
    case Tint::bad:
        return dark ? QColor(0xff, 0x7d, 0x75) : QColor(0xc8, 0x20, 0x2c);
    case Tint::primary:
        break;
    }
    return lookOf(widget).primary;
}

bool showsFocus(const QWidget &widget) {
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

int labelFlags(const QWidget &widget, Qt::Alignment alignment) {
    const bool isUnderlined = widget.style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, &widget) != 0;
    return static_cast<int>(alignment.toInt()) |
           static_cast<int>(isUnderlined ? Qt::TextShowMnemonic : Qt::TextHideMnemonic);
}

FormText::FormText(const QString &text, double points, Tint tint, QFont::Weight weight)
    : m_points(points), m_weight(weight), m_tint(tint) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setText(text);
    applyFont();
    applyTint();
}

void FormText::setTint(Tint tint) {
    m_tint = tint;
    applyTint();
}

void FormText::changeEvent(QEvent *event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        applyFont();
    } else if (event->type() == QEvent::PaletteChange) {
        applyTint();
    }
}

void FormText::applyFont() {
    setFont(formFont(m_points, m_weight));
}

void FormText::applyTint() {
    const QColor color = tintColor(*this, m_tint);
    if (palette().color(QPalette::WindowText) != color) {
        QPalette own = palette();
        own.setColor(QPalette::WindowText, color);
        setPalette(own);
    }
}

SymbolView::SymbolView(const QString &name, double points, Tint tint) : m_name(name), m_points(points), m_tint(tint) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolView::setSymbol(const QString &name, Tint tint) {
    m_name = name;
    m_tint = tint;
    update();
}

QSize SymbolView::sizeHint() const {
    const int side = qRound(symbolSide(m_points * textScale()));
    return {side, side};
}

void SymbolView::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    drawSymbol(painter, rect(), m_name, tintColor(*this, m_tint));
}

FormSection::FormSection(const QString &heading, const QString &footer) {
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    const auto addText = [column](FormText *text) {
        text->setContentsMargins(hairlineInset, 0, hairlineInset, 0);
        column->addWidget(text);
    };
    if (!heading.isEmpty()) {
        addText(new FormText(heading, bodyPoints, Tint::primary, QFont::DemiBold));
    }
    auto *const box = new FormBox;
    m_rows = box->rows();
    column->addWidget(box);
    if (!footer.isEmpty()) {
        addText(new FormText(footer, captionPoints, Tint::secondary));
    }
    setAccessibleName(heading);
}

void FormSection::addRow(QWidget *row) {
    m_rows->addWidget(row);
}

void FormSection::addControl(FormText *label, QWidget *control) {
    leaveWheelToPage(control);
    label->setBuddy(control);
    auto *const row = new QWidget;
    auto *const line = new QHBoxLayout(row);
    line->setContentsMargins(rowMargins());
    line->setSpacing(hairlineInset);
    line->addWidget(label, 1);
    line->addWidget(control);
    row->setMinimumHeight(scaled(rowHeight));
    addRow(row);
}

QMargins rowMargins() {
    return {hairlineInset, 6, hairlineInset, 6};
}

QMargins pageMargins() {
    return {20, 6, 9, 14}; // a scroll bar's room comes to the right one
}

void leaveWheelToPage(QWidget *control) {
    control->setFocusPolicy(Qt::StrongFocus);
    auto *const area = qobject_cast<QAbstractScrollArea *>(control);
    (area != nullptr ? area->viewport() : control)->installEventFilter(new WheelGuard(control));
}

} // namespace quillory::ui
