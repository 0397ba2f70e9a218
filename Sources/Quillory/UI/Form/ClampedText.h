// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Form/Form.h"

namespace quillory::ui {

/// A text that takes no more than so many lines: the last one ends in an ellipsis where it would go on. All of it is in
/// the tool tip, and what assistive tools read.
class ClampedText final : public QWidget {
  public:
    ClampedText(double points, int lines);
    void setText(const QString &text, Tint tint);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

  protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    double m_points;
    int m_lines;
    QString m_text;
    Tint m_tint = Tint::primary;
};

} // namespace quillory::ui
