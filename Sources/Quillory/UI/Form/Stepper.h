// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QSpinBox>

namespace quillory::ui {

/// Two arrows that step a number up and down; the number itself is shown elsewhere. To assistive tools it is a spin
/// box. Arrow keys, Page Up and Page Down step as well, and a pressed arrow repeats.
class Stepper final : public QSpinBox {
  public:
    Stepper();
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    void paintHalf(QPainter &painter, const QRectF &half, int direction) const;

    /// +1 and -1 while the upper or the lower arrow is pressed.
    int m_pressed = 0;
    QBasicTimer m_repeat;
};

} // namespace quillory::ui
