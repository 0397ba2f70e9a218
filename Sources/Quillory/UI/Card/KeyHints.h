// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillory::ui {

/// "Tab accept, Esc dismiss", with the keys as they look on a keyboard.
class KeyHints final : public QWidget {
  public:
    explicit KeyHints(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillory::ui
