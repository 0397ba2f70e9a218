// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVariantAnimation>

class QWidget;

namespace quillory::ui {

/// Tells a view whether the pointer is over it, as a value that changes along an ease-out curve. Repaints the view
/// meanwhile.
class Hover final : public QObject {
  public:
    explicit Hover(QWidget &view);
    /// From 0 (away from the view) to 1 (over it).
    [[nodiscard]] double progress() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void set(bool hovering);

    QWidget &m_view;
    QVariantAnimation m_animation;
    bool m_hovering = false;
};

} // namespace quillory::ui
