// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/Hover.h"

#include <QAbstractButton>

namespace quillory::ui {

/// A symbol to click on. It is faint until the pointer is over it; a button that can have the keyboard focus gets a
/// background instead. Its clickable area is larger than the symbol in its centre.
class HoverIconButton final : public QAbstractButton {
  public:
    /// systemName: the symbol. name: what screen readers say.
    HoverIconButton(const QString &systemName, const QString &name, QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;
    /// The side of the symbol itself, in points.
    [[nodiscard]] static int symbolExtent(double scale = 1);
    /// Enlarges the symbol by this factor; 1 at first.
    void setScale(double scale);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_systemName;
    double m_scale = 1;
    Hover m_hover;
};

} // namespace quillory::ui
