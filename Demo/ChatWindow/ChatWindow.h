// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "ChatWindow/Conversation.h"
#include "ChatWindow/MessageBox.h"

#include <QStringList>
#include <QWidget>

namespace quillory::demo {

/// A chat with a supplier who answers from a script: a place to type drafts in.
class ChatWindow : public QWidget {
  public:
    /// reportFile: kept up to date with what the box holds and what was sent, for whoever drives the window; empty
    /// for none.
    explicit ChatWindow(const QString &reportFile);

  private:
    [[nodiscard]] QWidget *makeHeader();
    [[nodiscard]] QWidget *makeFooter();
    void greet();
    void send();
    void answer();
    void report() const;

    QString m_reportFile;
    QStringList m_sent;
    Conversation *m_conversation;
    MessageBox *m_box;
};

} // namespace quillory::demo
