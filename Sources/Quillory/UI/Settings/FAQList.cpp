// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/UI/Settings/FAQList.h"

#include "Quillory/UI/Form/Form.h"
#include "Quillory/UI/Look.h"
#include "Quillory/UI/Settings/FAQBlock.h"

#include <QEvent>
#include <QPainter>
#include <QResizeEvent>

#include <algorithm>

namespace quillory::ui {

namespace {
/// Blocks are made so far ahead of what can be seen.
constexpr int ahead = 120;
} // namespace

FAQList::FAQList(FAQEditor &editor) : m_editor(editor) {
    m_editor.onForeignChange = [this] { reload(); };
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVisible(!m_editor.entries().isEmpty());
}

void FAQList::setView(int top, int bottom) {
    m_viewTop = top;
    m_viewBottom = bottom;
    place();
}

void FAQList::setNeighbours(QWidget *before, QWidget *after) {
    m_before = before;
    m_after = after;
}

void FAQList::add() {
    m_editor.add();
    layOut();
    giveFocusTo(m_editor.entries().size() - 1);
}

void FAQList::remove(qsizetype index) {
    m_editor.remove(index);
    reload();
    giveFocusTo(std::min(index, m_editor.entries().size() - 1));
}

void FAQList::refresh() {
    const FAQBlock *const block = focusedBlock();
    m_editor.adoptForeignChange(block != nullptr && block->isBeingTyped() ? std::optional(block->index())
                                                                          : std::nullopt);
}

// Entries have moved. The block that the user is in goes with its entry, the others are given out anew.
void FAQList::reload() {
    measure(); // letting go of a block moves the focus, which scrolls, which places blocks
    FAQBlock *const kept = focusedBlock();
    for (const auto &[index, block] : m_blocks) {
        if (block != kept) {
            block->release();
            m_spare.push_back(block);
        }
    }
    m_blocks.clear();
    if (kept != nullptr) {
        const auto found = std::ranges::find(m_editor.entries(), kept->entry(), &FAQEntry::id);
        if (found != m_editor.entries().end()) {
            const qsizetype index = found - m_editor.entries().begin();
            kept->showEntry(*found, index);
            m_blocks[index] = kept;
        } else {
            kept->release();
            m_spare.push_back(kept);
        }
    }
    layOut();
}

void FAQList::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        m_measured.clear();
        layOut();
    }
}

void FAQList::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        m_measured.clear();
        layOut();
    }
}

void FAQList::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    const int inset = rowMargins().left();
    const QColor line = faded(lookOf(*this).primary, 0.09);
    for (std::size_t i = 1; i + 1 < m_tops.size(); ++i) {
        if (event->rect().contains(inset, m_tops[i])) {
            painter.fillRect(inset, m_tops[i], width() - 2 * inset, 1, line);
        }
    }
}

void FAQList::measure() {
    m_tops.resize(1);
    for (const FAQEntry &entry : m_editor.entries()) {
        m_tops.push_back(m_tops.back() + measuredHeight(entry));
    }
}

void FAQList::layOut() {
    measure();
    setFixedHeight(m_tops.back());
    setVisible(m_tops.back() > 0);
    place();
    update();
}

int FAQList::measuredHeight(const FAQEntry &entry) {
    Measured &measured = m_measured[entry.id];
    if (measured.height == 0 || measured.answer != entry.answer) {
        measured = {entry.answer, FAQBlock::heightFor(entry, width())};
    }
    return measured.height;
}

int FAQList::heightOf(qsizetype index) const {
    const auto at = static_cast<std::size_t>(index);
    return m_tops.at(at + 1) - m_tops.at(at);
}

std::vector<qsizetype> FAQList::neededEntries() const {
    const qsizetype count = m_editor.entries().size();
    const auto indexAt = [this](int y) -> qsizetype {
        return std::ranges::upper_bound(m_tops, y) - m_tops.begin() - 1;
    };
    std::vector<qsizetype> needed;
    if (m_viewBottom <= m_viewTop) {
        return needed; // not in a window yet
    }
    const qsizetype last = std::min(count - 1, indexAt(m_viewBottom + ahead));
    for (qsizetype i = std::max<qsizetype>(0, indexAt(m_viewTop - ahead)); i <= last; ++i) {
        needed.push_back(i);
    }
    if (const FAQBlock *const block = focusedBlock()) {
        for (qsizetype i = std::max<qsizetype>(0, block->index() - 1); i <= std::min(count - 1, block->index() + 1);
             ++i) {
            needed.push_back(i);
        }
    }
    return needed;
}

void FAQList::place() {
    const std::vector<qsizetype> needed = neededEntries();
    std::erase_if(m_blocks, [&](const auto &shown) {
        const bool isNeeded = std::ranges::find(needed, shown.first) != needed.end();
        if (!isNeeded) {
            shown.second->release();
            m_spare.push_back(shown.second);
        }
        return !isNeeded;
    });
    const std::size_t before = m_blocks.size();
    std::ranges::for_each(needed, [this](qsizetype index) { showBlock(index); });
    if (m_blocks.size() != before) {
        chainFocus();
    }
}

void FAQList::showBlock(qsizetype index) {
    const auto [place, isNew] = m_blocks.try_emplace(index, nullptr);
    if (isNew) {
        place->second = spareBlock();
        place->second->showEntry(m_editor.entries().at(index), index);
    }
    place->second->setGeometry(0, m_tops.at(static_cast<std::size_t>(index)), width(), heightOf(index));
}

FAQBlock *FAQList::spareBlock() {
    if (m_spare.empty()) {
        return newBlock();
    }
    FAQBlock *const block = m_spare.back();
    m_spare.pop_back();
    return block;
}

FAQBlock *FAQList::newBlock() {
    auto *const block = new FAQBlock(this);
    block->onQuestion = [this](qsizetype index, const QString &text) { m_editor.setQuestion(index, text); };
    block->onAnswer = [this](qsizetype index, const QString &text) {
        m_editor.setAnswer(index, text);
        layOut();
    };
    block->onRemove = [this](qsizetype index) { remove(index); };
    block->onFocus = [this] { place(); };
    return block;
}

void FAQList::chainFocus() const {
    QWidget *last = m_before;
    for (const auto &[index, block] : m_blocks) {
        if (last != nullptr) {
            QWidget::setTabOrder(last, block->firstField());
        }
        block->chainFields();
        last = block->lastField();
    }
    if (last != nullptr && m_after != nullptr) {
        QWidget::setTabOrder(last, m_after);
    }
}

void FAQList::giveFocusTo(qsizetype index) {
    if (index < 0) {
        return;
    }
    showBlock(index);
    FAQBlock *const block = m_blocks.at(index);
    block->firstField()->setFocus(Qt::TabFocusReason);
    if (onReveal) {
        onReveal(block);
    }
}

FAQBlock *FAQList::focusedBlock() const {
    const auto found = std::ranges::find_if(m_blocks, [](const auto &shown) { return shown.second->hasFocusInside(); });
    return found == m_blocks.end() ? nullptr : found->second;
}

} // namespace quillory::ui
