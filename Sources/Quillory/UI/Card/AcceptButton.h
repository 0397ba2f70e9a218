// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/Hover.h"

#include <QAbstractButton>

namespace quillory::ui {

/// The capsule-shaped button that accepts a suggestion. While disabled it is dimmed and ignores clicks.
class AcceptButton final : public QAbstractButton {
  public:
    explicit AcceptButton(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    Hover m_hover;
};

} // namespace quillory::ui
