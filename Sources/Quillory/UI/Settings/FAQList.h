// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/FAQEditor.h"

#include <QHash>
#include <QWidget>

#include <map>
#include <vector>

namespace quillory::ui {

class FAQBlock;

/// The FAQ entries below one another. Blocks with fields exist only for the entries in view and around the keyboard
/// focus, and are used again for others: hundreds of entries open, scroll and change like a handful.
class FAQList final : public QWidget {
  public:
    explicit FAQList(FAQEditor &editor);

    /// Called when a block ought to be scrolled into view.
    std::function<void(QWidget *)> onReveal;

    /// The part of the list that can be seen, in its own coordinates.
    void setView(int top, int bottom);
    /// Tab comes to the list from the one and leaves it for the other.
    void setNeighbours(QWidget *before, QWidget *after);
    /// Adds an entry and gives its question the focus.
    void add();
    /// Shows what another process has stored.
    void refresh();

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

  private:
    void reload();
    void measure();
    void layOut();
    [[nodiscard]] int measuredHeight(const FAQEntry &entry);
    [[nodiscard]] int heightOf(qsizetype index) const;
    void place();
    void showBlock(qsizetype index);
    [[nodiscard]] FAQBlock *spareBlock();
    [[nodiscard]] FAQBlock *newBlock();
    [[nodiscard]] std::vector<qsizetype> neededEntries() const;
    void chainFocus() const;
    void remove(qsizetype index);
    void giveFocusTo(qsizetype index);
    [[nodiscard]] FAQBlock *focusedBlock() const;

    FAQEditor &m_editor;
    struct Measured {
        QString answer;
        int height = 0;
    };
    QHash<QUuid, Measured> m_measured;
    /// Where each entry begins; the last is where the list ends.
    std::vector<int> m_tops{0};
    std::map<qsizetype, FAQBlock *> m_blocks;
    std::vector<FAQBlock *> m_spare;
    int m_viewTop = 0;
    int m_viewBottom = 0;
    QWidget *m_before = nullptr;
    QWidget *m_after = nullptr;
};

} // namespace quillory::ui
