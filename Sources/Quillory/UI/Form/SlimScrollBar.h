// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollBar>

namespace quillory::ui {

/// A vertical scroll bar that is only a handle, and nothing at all while there is nothing to scroll. So it may keep its
/// room, and the content its width.
class SlimScrollBar final : public QScrollBar {
  public:
    SlimScrollBar();
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillory::ui
