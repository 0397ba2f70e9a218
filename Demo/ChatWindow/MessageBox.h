// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextEdit>

#include <functional>

namespace quillory::demo {

/// The box that the user types into. It grows with its lines. Enter sends, Shift+Enter starts a new line.
class MessageBox : public QTextEdit {
  public:
    explicit MessageBox(QWidget *parent);

    std::function<void()> onSend;

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

  private:
    void fitToText();
};

} // namespace quillory::demo
