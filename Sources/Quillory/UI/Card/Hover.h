// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVariantAnimation>

class QWidget;

namespace quillory::ui {

/// Whether the pointer is over a view, as a value that follows with an ease-out curve and repaints the view.
class Hover final : public QObject {
  public:
    explicit Hover(QWidget &view);
    /// 0 away from the view, 1 over it.
    [[nodiscard]] double progress() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void set(bool hovering);

    QWidget &m_view;
    QVariantAnimation m_animation;
    bool m_hovering = false;
};

} // namespace quillory::ui
