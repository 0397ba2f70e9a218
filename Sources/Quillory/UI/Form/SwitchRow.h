// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace quillory::ui {

/// A row of a form with a label and a switch. All of the row switches it; to assistive tools it is a check box.
class SwitchRow final : public QCheckBox {
  public:
    explicit SwitchRow(const QString &label);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    [[nodiscard]] bool hitButton(const QPoint &place) const override { return rect().contains(place); }
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    void slide();
    void paintSwitch(QPainter &painter, const QRectF &track) const;

    QVariantAnimation m_knob;
};

} // namespace quillory::ui
