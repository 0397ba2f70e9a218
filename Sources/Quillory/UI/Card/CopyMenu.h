// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/CardButtons.h"

#include <QTimer>

namespace quillory::ui {

/// A menu with one entry, "Copy", inside the panel itself. A QMenu would grab the keyboard while the user goes on
/// typing into the other application.
class CopyMenu final : public HoverButton {
  public:
    explicit CopyMenu(QWidget *parent);
    /// Offers to copy the text. place: where the menu appears, in the parent's coordinates.
    void popUp(QPoint place, const QString &text);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    QTimer m_hideTimer;
    QString m_text;
};

} // namespace quillory::ui
