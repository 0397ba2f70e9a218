// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

class QVBoxLayout;

/// What a grouped form is put together from: sections of rows in boxes with round corners, a heading above and a footer
/// below. Sizes are points as elsewhere; those of texts, and what has to fit them, grow with the desktop's font.
namespace quillory::ui {

/// How much larger than usual the desktop's font is; at least 1.
[[nodiscard]] double textScale();
/// The desktop's font, at this size where the desktop's own size is the usual one.
[[nodiscard]] QFont formFont(double points, QFont::Weight weight = QFont::Normal);
/// A length that grows with the texts, in whole points.
[[nodiscard]] int scaled(double points);

/// The size of most texts of a form, and of its captions.
inline constexpr double bodyPoints = 13;
inline constexpr double captionPoints = 11;

enum class Tint { primary, secondary, accent, good, warning, bad };
/// The colour on a widget's background, with the contrast that text needs.
[[nodiscard]] QColor tintColor(const QWidget &widget, Tint tint);

/// Whether a widget has to show that it has the keyboard focus: once the user has moved the focus by keyboard.
[[nodiscard]] bool showsFocus(const QWidget &widget);

/// How the painter draws a label: its mnemonic is underlined where the desktop does that.
[[nodiscard]] int labelFlags(const QWidget &widget, Qt::Alignment alignment);

/// A text of a form, broken into lines as needed. Never rich text, whatever is in it.
class FormText final : public QLabel {
  public:
    FormText(const QString &text, double points, Tint tint = Tint::primary, QFont::Weight weight = QFont::Normal);
    void setTint(Tint tint);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void applyFont();
    void applyTint();

    double m_points;
    QFont::Weight m_weight;
    Tint m_tint;
};

/// A symbol beside a text of a size.
class SymbolView final : public QWidget {
  public:
    SymbolView(const QString &name, double points, Tint tint);
    void setSymbol(const QString &name, Tint tint);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_name;
    double m_points;
    Tint m_tint;
};

/// A box of rows with hairlines between them; an empty heading or footer takes no room.
class FormSection final : public QWidget {
  public:
    explicit FormSection(const QString &heading = {}, const QString &footer = {});
    void addRow(QWidget *row);
    /// A row with a label at its leading edge and the control that it names at its trailing one.
    void addControl(FormText *label, QWidget *control);

  private:
    QVBoxLayout *m_rows;
};

/// The space around the content of a row, and around and between the sections of a page.
[[nodiscard]] QMargins rowMargins();
[[nodiscard]] QMargins pageMargins();
inline constexpr int sectionGap = 16;

/// Leaves turns of the wheel over a control to the page, which scrolls, unless the control has the focus.
void leaveWheelToPage(QWidget *control);

} // namespace quillory::ui
