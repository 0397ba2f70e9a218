// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>

#include <vector>

namespace platform::desktop::atspi {

/// A stretch of an element's own text that stands between its child elements, in code points.
struct TextRun {
    QString text;
    int from = 0;
    int to = 0;
    /// The child elements that come before it.
    std::size_t childrenBefore = 0;
};

/// The stretches of a text in which each U+FFFC stands for a child element. Firefox folds the text leaves of a page
/// into such texts; taken apart again they are the static texts that every other browser gives.
[[nodiscard]] std::vector<TextRun> textRuns(const QString &text);

} // namespace platform::desktop::atspi
