// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/QtMainQueue.h"

namespace quillory::test {

/// What the browser tells of its page at the moment: a change gets there a little later than into the page's document.
class AccessibleTree {
  public:
    /// Whether the page around the focused field can be read, and no text of it begins so.
    [[nodiscard]] bool lacks(const QString &text);

  private:
    platform::desktop::QtMainQueue m_queue;
    platform::desktop::AtspiAccessibility m_accessibility{m_queue};
};

} // namespace quillory::test
