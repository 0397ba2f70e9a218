// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/Reader/Reader.h"

namespace platform::desktop::atspi {

/// The main thread's questions about whole pages: answered from the mirror while that is fresh; else the reader reads
/// the page and is waited for, but not for long. Main thread only.
class PageQuestions {
  public:
    explicit PageQuestions(Reader &reader) : m_reader(reader) {}

    /// A copy that is good enough for the question; null when there is none in time.
    [[nodiscard]] std::shared_ptr<const PageCopy> copy(const PageName &page, AXFreshness freshness);
    /// Has the reader begin with what copy() will be asked for.
    void prepare(const PageName &page, AXFreshness freshness);

  private:
    using Job = std::shared_ptr<Reader::Job<bool>>;
    [[nodiscard]] Clock::time_point oldestUseful(const PageName &page, const MirroredPage &mirrored,
                                                 Clock::time_point askedAt) const;
    Job request(const PageName &page, Clock::time_point notBefore);

    Reader &m_reader;
    /// The latest request, which the reader may not have finished yet.
    PageName m_requested;
    Job m_request;
    /// The announced page, and since when it must have been read if it is known to have changed.
    PageName m_prepared;
    Clock::time_point m_preparedAt;
};

} // namespace platform::desktop::atspi
