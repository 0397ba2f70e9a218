// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace quillory::ui {

/// A key as it looks on a keyboard.
class KeyCap final : public QWidget {
  public:
    KeyCap(const QString &label, QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    QString m_label;
};

/// "Tab accept, Esc dismiss".
class KeyHints final : public QWidget {
  public:
    explicit KeyHints(QWidget *parent);
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    struct Hint {
        KeyCap *cap;
        QString word;
        double x;
    };
    void arrange();

    QList<Hint> m_hints;
    double m_width = 0;
};

} // namespace quillory::ui
