// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Questions.h"
#include "Platform/Linux/Accessibility/Text/FlatText.h"

#include <unordered_map>
#include <unordered_set>

namespace platform::desktop::atspi {

/// Reads the text of a field, and of the elements nested in it when it is a rich-text box. The structure is remembered,
/// so a box whose structure has not changed is read again in one round trip.
class EditorText {
  public:
    struct Outcome {
        /// Absent when it could not be read whole: no answer came, or it is too long.
        std::optional<QString> value;
        /// Length in UTF-16 units where the value was read, else the characters counted so far.
        std::optional<qint64> characters;
    };

    /// hasFinalBreak: whether a line break at the very end only ends the last line.
    EditorText(ElementRef root, bool hasFinalBreak);

    /// Adds the questions about what may have changed in the known elements.
    void askAgain(Questions &questions);
    /// Asks on until everything is known, then puts the text together. A text longer than the limit is counted but not
    /// copied.
    Outcome finish(Connection &connection, Deadline deadline);
    void setLimit(int characters) { m_limit = characters; }

  private:
    enum class Knowledge { nothing, described, complete };
    struct Node {
        Knowledge knowledge = Knowledge::nothing;
        bool isFresh = false;
        bool hasFreshChildren = false;
        Role role = Role::unknown;
        int count = 0;
        QString text;
        std::vector<ElementRef> children;
    };

    void askText(Questions &questions, const ElementRef &ref);
    void askDescription(Questions &questions, const ElementRef &ref);
    void askChildren(Questions &questions, const ElementRef &ref);
    void askRest(Questions &questions);
    void askOpen(Questions &questions, const ElementRef &ref);
    [[nodiscard]] bool isOpen(const ElementRef &ref) const;
    void collect(const ElementRef &ref, int depth, std::vector<ElementRef> &open);
    [[nodiscard]] bool isInlined(const ElementRef &ref) const;
    [[nodiscard]] std::vector<ElementRef> embeddedChildren(const Node &node) const;
    [[nodiscard]] std::optional<TextPiece> piece(const ElementRef &ref, int depth) const;

    ElementRef m_root;
    bool m_hasFinalBreak;
    int m_limit = 0;
    bool m_tooMuch = false;
    std::unordered_map<ElementRef, Node, ElementRefHash> m_nodes;
    std::vector<ElementRef> m_reachable;
    std::unordered_set<ElementRef, ElementRefHash> m_seen;
};

} // namespace platform::desktop::atspi
