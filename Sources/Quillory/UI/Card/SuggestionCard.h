// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Panel/SuggestionCardData.h"

#include <QWidget>

#include <functional>

namespace quillory::ui {

class AcceptButton;
class CardText;
class HoverIconButton;
class KeyHints;
class RefiningIndicator;

/// One suggestion: a header, the text (or an indicator, or an error message), and a footer with the button. New data
/// change it in place, so that hovering and selected text survive a stream of updates.
class SuggestionCard final : public QWidget {
  public:
    explicit SuggestionCard(QWidget *parent);

    std::function<void()> onAccept;
    std::function<void()> onDismiss;
    /// Called for the copy menu, with its position in this card's coordinates and the text to copy.
    std::function<void(QPoint, const QString &)> onCopyMenu;

    void setData(const SuggestionCardData &card, bool showKeyHints);
    /// The heights of the text row and of everything else, in points. Only the text can be given less.
    struct Heights {
        int text = 0;
        int rest = 0;
    };
    [[nodiscard]] Heights heightsFor(int width);
    /// Resizes the card to this width and these heights, and arranges its rows.
    void layOut(int width, Heights heights);

    static constexpr double cornerRadius = 16;

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    enum class State { failed, waiting, text };
    [[nodiscard]] State state() const;
    [[nodiscard]] int footerHeight(int innerWidth) const;
    [[nodiscard]] bool footerFitsInOneRow(int innerWidth) const;
    void layOutFooter(int top, int innerWidth);
    void paintHeader(QPainter &painter) const;
    void paintBadge(QPainter &painter, double left) const;

    SuggestionCardData m_data;
    bool m_showKeyHints = false;
    HoverIconButton *m_close;
    CardText *m_text;
    RefiningIndicator *m_refining;
    AcceptButton *m_accept;
    KeyHints *m_hints;
};

} // namespace quillory::ui
