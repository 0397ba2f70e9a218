// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/UI/Card/Hover.h"

#include <QAbstractButton>

namespace quillory::ui {

/// A button without a border: a symbol and a label in the accent colour.
class LinkButton final : public QAbstractButton {
  public:
    LinkButton(const QString &symbol, const QString &label);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_symbol;
    Hover m_hover;
};

} // namespace quillory::ui
