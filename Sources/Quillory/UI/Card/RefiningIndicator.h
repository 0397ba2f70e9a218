// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace quillory::ui {

/// Shows that the model has not answered yet: a spinner, and a word that fades in and out. Costs nothing while hidden.
class RefiningIndicator final : public QWidget {
  public:
    explicit RefiningIndicator(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;
    /// The opacity of "Refining…" this long after the indicator was shown.
    [[nodiscard]] static double opacityAt(qint64 milliseconds);

  protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

  private:
    void paintSpinner(QPainter &painter) const;

    QBasicTimer m_timer;
    QElapsedTimer m_sinceShown;
};

} // namespace quillory::ui
