// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Form/Form.h"

#include "Quillory/UI/Look.h"
#include "Quillory/UI/Symbols.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QTextLayout>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillory::ui {

namespace {

constexpr double boxRadius = 9;
constexpr int hairlineInset = 12;
constexpr int symbolGap = 7;
constexpr double rowHeight = 36;

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
QColor legibleAccent(const QPalette &palette) {
    constexpr double enough = 4.5;
    const QColor primary = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor chosenTab = mixed(palette.color(QPalette::Active, QPalette::Window), primary, 0.09);
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    QColor color = accent;
    for (double share = 0; contrast(color, chosenTab) < enough && share <= 1; share += 0.05) {
        color = mixed(accent, primary, share);
    }
    return color;
}

class FontKeeper final : public QObject {
  public:
    FontKeeper(QWidget &widget, double points, QFont::Weight weight)
        : QObject(&widget), m_widget(widget), m_points(points), m_weight(weight) {
        apply();
        widget.installEventFilter(this);
    }
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::ApplicationFontChange) {
            apply();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    void apply() { m_widget.setFont(formFont(m_points, m_weight)); }

    QWidget &m_widget;
    double m_points;
    QFont::Weight m_weight;
};

/// The rows' background and the lines between them.
class FormBox final : public QWidget {
  public:
    FormBox() : m_rows(new QVBoxLayout(this)) {
        m_rows->setContentsMargins(0, 0, 0, 0);
        m_rows->setSpacing(1);
    }
    QBoxLayout *rows() { return m_rows; }

  protected:
    void paintEvent(QPaintEvent *event) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool dark = isDark(palette());
        const QColor line = faded(lookOf(*this).primary, dark ? 0.10 : 0.08);
        drawRoundedBox(painter, rect(), boxRadius,
                       mixed(palette().color(QPalette::Window), Qt::white, dark ? 0.05 : 0.6), line);
        bool isFirst = true;
        for (int i = 0; i < m_rows->count(); ++i) {
            const QLayoutItem &row = *m_rows->itemAt(i);
            const QRect hairline(hairlineInset, row.geometry().top() - 1, width() - 2 * hairlineInset, 1);
            if (!row.isEmpty() && !std::exchange(isFirst, false) && hairline.intersects(event->rect())) {
                painter.fillRect(hairline, line);
            }
        }
    }

  private:
    QBoxLayout *m_rows;
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

void setFormFont(QWidget &widget, double points, QFont::Weight weight) {
    new FontKeeper(widget, points, weight);
}

int scaled(double points) {
    return qRound(points * textScale());
}

QColor tintColor(const QPalette &palette, Tint tint) {
    const bool dark = isDark(palette);
    switch (tint) {
    case Tint::secondary:
        return lookOf(palette).secondary;
    case Tint::accent:
        return legibleAccent(palette);
    case Tint::good:
        return dark ? QColor(0x5b, 0xc8, 0x6b) : QColor(0x17, 0x78, 0x33);
    case Tint::warning:
        return dark ? QColor(0xf2, 0x9a, 0x4a) : QColor(0xb2, 0x55, 0x00);
    case Tint::bad:
        return dark ? QColor(0xff, 0x7d, 0x75) : QColor(0xc8, 0x20, 0x2c);
    case Tint::primary:
        break;
    }
    return lookOf(palette).primary;
}

FormText::FormText(const QString &text, double points, Tint tint, QFont::Weight weight)
    : m_points(points), m_tint(tint) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setText(text);
    setFormFont(*this, points, weight);
    applyTint();
}

void FormText::setTint(Tint tint) {
    m_tint = tint;
    applyTint();
}

void FormText::setSymbol(const QString &name, Tint tint) {
    m_symbol = name;
    m_symbolTint = tint;
    applySizes();
    update();
}

void FormText::setLines(int lines) {
    m_lines = lines;
    setWordWrap(false);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    applySizes();
}

bool FormText::event(QEvent *event) {
    if (event->type() == QEvent::ToolTip && m_lines > 0 && !text().isEmpty()) {
        // As a paragraph it is broken into lines; left to itself, a service's words might be taken for markup.
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           QStringLiteral("<p>%1</p>").arg(text().toHtmlEscaped()), this);
        return true;
    }
    return QLabel::event(event);
}

void FormText::changeEvent(QEvent *event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        applySizes();
    } else if (event->type() == QEvent::PaletteChange) {
        applyTint();
    }
}

void FormText::applyTint() {
    const QColor color = tintColor(palette(), m_tint);
    if (palette().color(QPalette::WindowText) != color) {
        QPalette own = palette();
        own.setColor(QPalette::WindowText, color);
        setPalette(own);
    }
}

void FormText::applySizes() {
    if (!m_symbol.isEmpty()) {
        setIndent(symbolExtent() + symbolGap);
        setMinimumHeight(symbolExtent());
    }
    if (m_lines > 0) {
        setFixedHeight(m_lines * fontMetrics().lineSpacing());
    }
}

int FormText::symbolExtent() const {
    return qRound(symbolSide(m_points * textScale()));
}

void FormText::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    if (!m_symbol.isEmpty()) {
        const int side = symbolExtent();
        drawSymbol(painter, QRect(0, (height() - side) / 2, side, side), m_symbol, tintColor(palette(), m_symbolTint));
    }
    if (m_lines > 0) {
        paintLines(painter);
    } else {
        painter.end();
        QLabel::paintEvent(event);
    }
}

void FormText::paintLines(QPainter &painter) const {
    const QString text = QString(this->text()).replace(u'\n', u' ');
    QTextLayout layout(text, font());
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() < m_lines; line = layout.createLine()) {
        line.setLineWidth(width());
        const bool isLast = lines.size() == m_lines - 1;
        lines.append(isLast ? fontMetrics().elidedText(text.sliced(line.textStart()), Qt::ElideRight, width())
                            : text.sliced(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, lines.join(u'\n'));
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

void FormSection::addRow(QWidget *row, int index) {
    m_rows->insertWidget(index, row);
}

QBoxLayout *FormSection::addRow(QBoxLayout::Direction direction) {
    auto *const row = new QWidget;
    auto *const content = new QBoxLayout(direction, row);
    content->setContentsMargins(rowMargins());
    row->setMinimumHeight(scaled(rowHeight));
    addRow(row);
    return content;
}

QWidget *newFormPage(std::initializer_list<FormSection *> sections) {
    auto *const page = new QWidget;
    auto *const column = new QVBoxLayout(page);
    column->setContentsMargins(pageMargins());
    column->setSpacing(sectionGap);
    for (FormSection *section : sections) {
        column->addWidget(section);
    }
    column->addStretch();
    return page;
}

QMargins rowMargins() {
    return {hairlineInset, 5, hairlineInset, 5};
}

QMargins pageMargins() {
    return {20, 6, 9, 14}; // a scroll bar's room comes to the right one
}

QScrollArea *newFormArea() {
    auto *const area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setFocusPolicy(Qt::NoFocus);
    return area;
}

} // namespace quillory::ui
