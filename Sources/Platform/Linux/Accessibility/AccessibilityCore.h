// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/ElementQueries.h"
#include "Platform/Linux/Accessibility/PageQuestions.h"
#include "Platform/Linux/ActiveWindow.h"

namespace platform::desktop::atspi {

/// The main thread's side: answers questions from what is fresh, and has the reader ask for the rest. What is read of
/// an element serves all questions of the same moment. Main thread only.
class AccessibilityCore : public std::enable_shared_from_this<AccessibilityCore> {
  public:
    using Conversion = std::function<Rect(const Rect &)>;
    using AskActiveWindow = std::function<std::optional<ActiveWindow>()>;

    /// inPoints: turns a rectangle of the screen's pixels into points, asked whenever coordinates are given out.
    /// activeWindow: the desktop's word on which window is active, asked whenever the focused element is.
    AccessibilityCore(std::string sessionBusAddress, qint32 ownPid, Conversion inPoints, AskActiveWindow activeWindow);

    [[nodiscard]] Reader &reader() { return m_reader; }
    [[nodiscard]] qint32 ownPid() const { return m_ownPid; }
    [[nodiscard]] AXUIElement element(const Handle &handle);

    [[nodiscard]] std::optional<AXUIElement> focusedElement();
    [[nodiscard]] std::optional<AXValue> attribute(const Handle &element, AXAttribute name);
    [[nodiscard]] bool isValueSettable(const Handle &element);
    bool setAttribute(const Handle &element, AXAttribute name, const AXValue &value);
    [[nodiscard]] std::vector<AXSubtreeNode> subtree(const Handle &element, AXSubtreeLimits limits,
                                                     AXFreshness freshness);
    /// Has the reader begin with what subtree() will be asked for.
    void prepareSubtree(const Handle &element, AXSubtreeLimits limits, AXFreshness freshness);
    [[nodiscard]] std::optional<AXUIElement> focusedWindow(qint32 pid);
    [[nodiscard]] std::optional<AXValue> applicationAttribute(qint32 pid, AXAttribute name);

  private:
    [[nodiscard]] Focus focusInFront(Clock::time_point askedAt);
    [[nodiscard]] bool isInFront(const Focus &focus, const ActiveWindow &active, Clock::time_point askedAt);
    [[nodiscard]] TextWanted wantedNow(const ElementRef &ref) const;
    void noteWanted(TextWanted wanted);
    [[nodiscard]] const FieldSnapshot *snapshot(const Handle &element, TextWanted wanted);
    [[nodiscard]] std::shared_ptr<const Ancestry> ancestryAround(const ElementRef &ref);
    [[nodiscard]] std::optional<AXValue> fromAncestry(const Handle &element, AXAttribute name);
    [[nodiscard]] const FieldSnapshot *lastTold(const ElementRef &ref) const;
    [[nodiscard]] std::optional<AXValue> fromSnapshot(const Handle &element, AXAttribute name);
    [[nodiscard]] std::optional<AXValue> fromQuery(const Handle &element, AXAttribute name);
    [[nodiscard]] std::optional<AXValue> wrap(const std::optional<Handle> &handle);
    [[nodiscard]] Rect inPoints(const PixelRect &rect) const;

    qint32 m_ownPid;
    Conversion m_inPoints;
    AskActiveWindow m_activeWindow;
    Reader m_reader;
    PageQuestions m_pages;
    /// The application that was seen to have the active window, under the number that its window gives.
    qint32 m_knownByItsWindow = 0;
    /// For the others: the window that was active when the element had the focus for sure.
    struct Place {
        ElementRef element;
        std::uint32_t window = 0;
    };
    Place m_place;
    /// What was read last, and until when it answers further questions of the same moment.
    std::shared_ptr<const FieldSnapshot> m_recent;
    Clock::time_point m_recentUntil;
    /// The focus that the last tick was told.
    Focus m_told;
    TextWanted m_wanted = TextWanted::value;
    Clock::time_point m_wantedUntil;
    /// Whether the chain above the focused element took too long a moment ago; it is not climbed level by level then.
    [[nodiscard]] bool isUnclimbable(const ElementRef &ref) const;
    std::shared_ptr<Reader::Job<std::shared_ptr<const Ancestry>>> m_chain;
    Clock::time_point m_unclimbableUntil;
    /// The latest refresh, which the reader may not have finished yet.
    std::shared_ptr<Reader::Job<bool>> m_refresh;
};

} // namespace platform::desktop::atspi
