// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace quillory::demo {

enum class Sender { us, them };

/// The messages, oldest at the top, theirs on the left and ours on the right. Scrolls to the newest one.
class Conversation : public QScrollArea {
  public:
    explicit Conversation(QWidget *parent);

    void add(Sender sender, const QString &text, const QString &time);

  private:
    QVBoxLayout *m_rows;
};

} // namespace quillory::demo
