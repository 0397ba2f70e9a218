// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/QtMainQueue.h"

namespace quillory::test {

/// What applications tell of their windows at the moment, which for a page is a little later than its document changes.
class AccessibleTree {
  public:
    /// Whether the page around the focused field can be read and has, for each of the wanted, a text that begins so,
    /// but none that begins like the unwanted.
    [[nodiscard]] bool pageShows(const QStringList &wanted, const QString &unwanted);
    /// The name of what has the keyboard focus; empty when nothing has, or it has none.
    [[nodiscard]] QString focusedName();
    /// Whether a window of a process shows a text that begins so.
    [[nodiscard]] bool windowShows(qint32 pid, const QString &text);

  private:
    platform::desktop::QtMainQueue m_queue;
    platform::desktop::AtspiAccessibility m_accessibility{m_queue};
};

} // namespace quillory::test
