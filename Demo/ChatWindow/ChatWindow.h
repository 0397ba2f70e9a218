// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ChatWindow/Conversation.h"
#include "ChatWindow/MessageBox.h"

#include <QMainWindow>
#include <QStringList>

namespace quillory::demo {

/// A chat of a bakery with its supplier, who is a customer too and answers from a script: a place to type drafts in and
/// to be asked questions.
class ChatWindow : public QMainWindow {
  public:
    /// reportFile: kept up to date with what the box holds and what was sent, for whoever drives the window; empty
    /// for none.
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
