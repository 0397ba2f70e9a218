// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUuid>
#include <QWidget>

#include <functional>

namespace quillory {
struct FAQEntry;
}

namespace quillory::ui {

class HoverIconButton;
class LineField;
class TextField;

/// The editor of one FAQ entry. Which entry that is may change: there are only as many blocks as are in view.
class FAQBlock final : public QWidget {
  public:
    explicit FAQBlock(QWidget *parent);

    /// Called with the index of the entry.
    std::function<void(qsizetype, const QString &)> onQuestion;
    std::function<void(qsizetype, const QString &)> onAnswer;
    std::function<void(qsizetype)> onRemove;
    std::function<void()> onFocus;

    /// Shows the entry of that index. A field that the user is typing in stays as it is.
    void showEntry(const FAQEntry &entry, qsizetype index);
    /// Forgets the entry until another one is shown.
    void release();
    [[nodiscard]] qsizetype index() const { return m_index; }
    [[nodiscard]] const QUuid &entry() const { return m_entry; }
    [[nodiscard]] bool hasFocusInside() const;
    /// Whether the user has changed a field of it since that got the focus.
    [[nodiscard]] bool isBeingTyped() const;
    /// Has Tab go through its fields from the first to the last.
    void chainFields() const;
    [[nodiscard]] QWidget *firstField() const;
    [[nodiscard]] QWidget *lastField() const;

    /// The height of the block of an entry at a width.
    [[nodiscard]] static int heightFor(const FAQEntry &entry, int width);

  protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    qsizetype m_index = 0;
    QUuid m_entry;
    LineField *m_question;
    HoverIconButton *m_trash;
    TextField *m_answer;
};

} // namespace quillory::ui
