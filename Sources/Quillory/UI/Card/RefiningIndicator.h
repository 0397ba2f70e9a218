// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

namespace quillory::ui {

/// Shows that the model has not answered yet: a spinner, and a word that fades in and out. Costs nothing while hidden.
class RefiningIndicator final : public QWidget {
  public:
    explicit RefiningIndicator(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

  private:
    QTimer m_frames;
    QElapsedTimer m_sinceShown;
};

} // namespace quillory::ui
