// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTabBar>

namespace quillory::ui {

/// Tabs as large buttons, each with its symbol above its label.
class SettingsTabBar final : public QTabBar {
  public:
    SettingsTabBar();
    void add(const QString &symbol, const QString &label);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    void paintTab(QPainter &painter, int index) const;
};

} // namespace quillory::ui
