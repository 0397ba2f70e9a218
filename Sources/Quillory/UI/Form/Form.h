// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QLabel>

#include <initializer_list>

class QScrollArea;

/// What grouped forms are put together from: sections of rows in boxes with round corners, a heading above and a footer
/// below. FormStyle draws the controls in them. Sizes are points as elsewhere; those of texts, and of what has to fit
/// them, grow with the desktop's font.
namespace quillory::ui {

/// How much larger than usual the desktop's font is; at least 1.
[[nodiscard]] double textScale();
/// The desktop's font, at this size where the desktop's own size is the usual one.
[[nodiscard]] QFont formFont(double points, QFont::Weight weight = QFont::Normal);
/// Gives a widget, and those in it that have none of their own, such a font, and keeps it when the desktop's changes.
void setFormFont(QWidget &widget, double points, QFont::Weight weight = QFont::Normal);
/// A length that grows with the texts, in whole points.
[[nodiscard]] int scaled(double points);

/// The sizes of most texts, of what the user writes, and of captions.
inline constexpr double bodyPoints = 13;
inline constexpr double fieldPoints = 12;
inline constexpr double captionPoints = 11;

enum class Tint { primary, secondary, accent, good, warning, bad };
/// The colour of a tint on the palette's window, with the contrast that text needs.
[[nodiscard]] QColor tintColor(const QPalette &palette, Tint tint);

/// A text of a form, broken into lines as needed. Never rich text, whatever is in it.
class FormText final : public QLabel {
  public:
    FormText(const QString &text, double points, Tint tint = Tint::primary, QFont::Weight weight = QFont::Normal);
    void setTint(Tint tint);
    /// Puts a symbol before the text.
    void setSymbol(const QString &name, Tint tint);
    /// Takes the room of that many lines, no more and no less. The last one ends in an ellipsis where the text would go
    /// on; all of it is in the tool tip then.
    void setLines(int lines);

  protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    void applyTint();
    void applySizes();
    void paintLines(QPainter &painter) const;
    [[nodiscard]] int symbolExtent() const;

    double m_points;
    Tint m_tint;
    QString m_symbol;
    Tint m_symbolTint = Tint::primary;
    int m_lines = 0;
};

/// A box of rows with hairlines between them. An empty heading or footer takes no room.
class FormSection : public QWidget {
  public:
    explicit FormSection(const QString &heading = {}, const QString &footer = {});
    /// Adds a row, or puts it before the one of an index.
    void addRow(QWidget *row, int index = -1);
    /// Adds a row and returns its layout, which has the margins of a row.
    QBoxLayout *addRow(QBoxLayout::Direction direction = QBoxLayout::LeftToRight);

  private:
    QBoxLayout *m_rows;
};

/// A page of sections, one below the other.
[[nodiscard]] QWidget *newFormPage(std::initializer_list<FormSection *> sections);

/// The space around the content of a row, and around and between the sections of a page.
[[nodiscard]] QMargins rowMargins();
[[nodiscard]] QMargins pageMargins();
inline constexpr int sectionGap = 16;

/// An area without a frame in which a page scrolls up and down. Its scroll bar always has its room, so that the page
/// keeps its width.
[[nodiscard]] QScrollArea *newFormArea();

} // namespace quillory::ui
