// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Accessibility/PageQuestions.h"

namespace platform::desktop::atspi {

/// The main thread's side: answers questions from what is fresh, and has the reader ask for the rest. One reading of an
/// element answers all questions of the same moment. Main thread only.
class AccessibilityCore : public std::enable_shared_from_this<AccessibilityCore> {
  public:
    explicit AccessibilityCore(AtspiAccessibility::Options options);

    [[nodiscard]] Reader &reader() { return m_reader; }
    /// The element of the whole desktop.
    [[nodiscard]] AXUIElement desktop();
    /// The element of a whole application.
    [[nodiscard]] AXUIElement application(qint32 pid);

    // What the elements' handles ask; see AXElementBackend.
    [[nodiscard]] std::optional<AXUIElement> focusedElement();
    [[nodiscard]] std::optional<AXValue> attribute(const Handle &element, AXAttribute name);
    [[nodiscard]] bool isValueSettable(const Handle &element);
    bool setAttribute(const Handle &element, AXAttribute name, const AXValue &value);
    [[nodiscard]] std::vector<AXSubtreeNode> subtree(const Handle &element, AXSubtreeLimits limits,
                                                     AXFreshness freshness);
    void prepareSubtree(const Handle &element, AXSubtreeLimits limits, AXFreshness freshness);
    [[nodiscard]] std::optional<AXValue> applicationAttribute(qint32 pid, AXAttribute name);

  private:
    template <class Query> auto ask(Query query, std::chrono::milliseconds limit);
    [[nodiscard]] Focus focusInFront(Clock::time_point askedAt);
    [[nodiscard]] bool isInFront(const Focus &focus, const ActiveWindow &active, Clock::time_point askedAt);
    [[nodiscard]] bool isTold(const ElementRef &ref) const { return m_told.element && m_told.element->ref == ref; }
    [[nodiscard]] TextWanted wantedNow(const ElementRef &ref) const;
    void noteWanted(TextWanted wanted);
    [[nodiscard]] const ElementReading &read(const Handle &element, TextWanted wanted);
    [[nodiscard]] const ElementReading *lastTold(const ElementRef &ref) const;
    [[nodiscard]] std::shared_ptr<const Ancestry> ancestryAround(const ElementRef &ref);
    [[nodiscard]] std::shared_ptr<const Ancestry> ancestryAbove(const Handle &element);
    [[nodiscard]] const ElementReading *levelOf(const ElementRef &ref);
    [[nodiscard]] std::optional<AXValue> fromReading(const ElementReading &reading, AXAttribute name) const;
    [[nodiscard]] std::optional<AXValue> fromFreshReading(const Handle &element, AXAttribute name);
    [[nodiscard]] AXUIElement wrap(const Handle &handle);
    [[nodiscard]] std::optional<AXValue> wrapKnown(const ElementReading *reading);
    [[nodiscard]] std::optional<AXValue> focusedWindow(qint32 pid);

    AtspiAccessibility::Options m_options;
    qint32 m_ownPid;
    Reader m_reader;
    PageQuestions m_pages;
    /// The application whose process is that of its windows, as was seen when it had the active one.
    qint32 m_knownByItsWindow = 0;
    /// For the others: the window that was active when the element had the focus for sure.
    struct Place {
        ElementRef element;
        std::uint32_t window = 0;
    };
    Place m_place;
    /// What was read last, and until when it answers further questions of the same moment.
    std::shared_ptr<const ElementReading> m_recent;
    Clock::time_point m_recentUntil;
    /// The focus that the last tick was told.
    Focus m_told;
    TextWanted m_wanted = TextWanted::value;
    Clock::time_point m_wantedUntil;
    /// The latest refresh of the chain above the focused element. If that took too long, the element's chain is not
    /// asked for until the time given.
    std::shared_ptr<Reader::Job<std::shared_ptr<const Ancestry>>> m_chain;
    Clock::time_point m_unclimbableUntil;
    /// The latest refresh of the focused element, which the reader may not have finished yet.
    std::shared_ptr<Reader::Job<bool>> m_refresh;
};

} // namespace platform::desktop::atspi
