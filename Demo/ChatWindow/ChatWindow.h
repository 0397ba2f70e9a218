// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ChatWindow/Conversation.h"
#include "ChatWindow/MessageBox.h"

#include <QMainWindow>
#include <QStringList>

namespace quillory::demo {

/// A chat between a bakery and its supplier, who is also a customer and answers from a script. Gives the user a box to
/// type into and questions to reply to.
class ChatWindow : public QMainWindow {
  public:
    /// reportFile: where the window writes what the box holds and what was sent, for a program that drives it. Empty:
    /// nowhere.
    explicit ChatWindow(const QString &reportFile);

  private:
    [[nodiscard]] static QWidget *makeHeader();
    [[nodiscard]] QWidget *makeFooter();
    void greet();
    void send();
    void answer();
    void report() const;

    QString m_reportFile;
    QStringList m_sent;
    Conversation *m_conversation = nullptr;
    MessageBox *m_box = nullptr;
};

} // namespace quillory::demo
