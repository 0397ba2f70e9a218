// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/Hover.h"

#include <QTimer>
#include <QWidget>

namespace quillory::ui {

/// A menu with one entry, "Copy", inside the panel itself. A QMenu would grab the keyboard while the user goes on
/// typing into the other application.
class CopyMenu final : public QWidget {
  public:
    explicit CopyMenu(QWidget *parent);
    /// Offers to copy the text. place: where the menu appears, in the parent's coordinates.
    void popUp(QPoint place, const QString &text);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    Hover m_hover;
    QTimer m_hideTimer;
    QString m_text;
};

} // namespace quillory::ui
