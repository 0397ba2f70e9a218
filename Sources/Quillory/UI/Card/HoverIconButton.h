// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/Hover.h"

#include <QAbstractButton>

namespace quillory::ui {

/// A symbol that acts when clicked and stands out while the pointer is over it: from a faint one by itself, or, where
/// it can have the keyboard focus, by a background. It takes clicks on all of its size hint, which is larger than the
/// symbol in its centre.
class HoverIconButton final : public QAbstractButton {
  public:
    /// name: what assistive tools call it.
    HoverIconButton(const QString &systemName, const QString &name, QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;
    /// The side of the symbol itself, in points.
    [[nodiscard]] static int symbolExtent(double scale = 1);
    /// How much larger than usual the symbol is; 1 at first.
    void setScale(double scale);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_systemName;
    double m_scale = 1;
    Hover m_hover;
};

} // namespace quillory::ui
