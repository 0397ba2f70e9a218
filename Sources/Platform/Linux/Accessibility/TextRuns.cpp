// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/TextRuns.h"

#include "Platform/Linux/Accessibility/FlatText.h"

#include <QStringList>

namespace platform::desktop::atspi {

std::vector<TextRun> textRuns(const QString &text) {
    std::vector<TextRun> runs;
    int offset = 0;
    const auto stretches = text.split(QChar(QChar::ObjectReplacementCharacter));
    for (qsizetype i = 0; i < stretches.size(); ++i) {
        const auto &stretch = stretches[i];
        const int end = offset + static_cast<int>(codePointOffset(stretch, stretch.size()));
        if (!stretch.trimmed().isEmpty()) {
            runs.push_back({cleanText(stretch), offset, end, static_cast<std::size_t>(i)});
        }
        offset = end + 1;
    }
    return runs;
}

} // namespace platform::desktop::atspi
