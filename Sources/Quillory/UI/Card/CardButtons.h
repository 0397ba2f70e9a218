// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>

namespace quillory::ui {

/// A button that shows by degrees that the pointer is over it. It never takes the keyboard focus.
class HoverButton : public QAbstractButton {
  protected:
    explicit HoverButton(QWidget *parent);
    /// From 0 (the pointer is elsewhere) to 1 (over the button).
    [[nodiscard]] double hover() const { return m_animation.currentValue().toDouble(); }
    bool event(QEvent *event) override;

  private:
    void slideTo(double end);

    QVariantAnimation m_animation;
};

/// The capsule-shaped button that accepts a suggestion. While disabled it is dimmed and ignores clicks.
class AcceptButton final : public HoverButton {
  public:
    explicit AcceptButton(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A symbol to click on, faint until the pointer is over it. Its clickable area is larger than the symbol in its
/// centre.
class HoverIconButton final : public HoverButton {
  public:
    /// systemName: the symbol. name: what screen readers say.
    HoverIconButton(const QString &systemName, const QString &name, QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;
    /// The side of the symbol itself, in points.
    [[nodiscard]] static int symbolExtent();

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_systemName;
};

} // namespace quillory::ui
