// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Platform.h"
#include "Quillory/Monitor/AnswerScreening.h"
#include "Quillory/Monitor/TypingMonitor.h"
#include "Quillory/Records/FileLog.h"

#include <algorithm>

namespace quillory {

void TypingMonitor::handleCompletion(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                                     const QString &rawFinal) {
    if (!isLive(stream, source)) {
        return;
    }
    const QString answer = cleanedAnswer(rawFinal);
    const Verdict verdict = screen(kind, source, answer);
    switch (verdict.outcome) {
    case Verdict::Outcome::rejected:
        FileLog::log(stream->label + QStringLiteral(" rejected: ") + verdict.reason);
        fail(stream, index, QStringLiteral("Rejected: ") + stream->label + QStringLiteral(" went off script"));
        break;
    case Verdict::Outcome::skipped:
        FileLog::log(stream->label + QStringLiteral(": no reply needed (SKIP)"));
        fail(stream, index, stream->label + QStringLiteral(": no reply needed"));
        break;
    case Verdict::Outcome::accepted:
        complete(stream, index, source, kind, answer);
        break;
    }
}

// The user is never left with nothing but failures on screen.
void TypingMonitor::fail(const StreamPointer &stream, int index, const QString &message) {
    stream->failed = true;
    stream->task.reset();
    if (std::all_of(m_streams.begin(), m_streams.end(), [](const auto &other) { return other->failed; })) {
        m_panel.hide();
        m_streamSource.reset();
    } else if (m_panel.isVisible()) {
        m_panel.failCard(index, message);
    }
}

void TypingMonitor::complete(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                             const QString &answer) {
    stream->final = answer;
    stream->completedAt = platform::current().mainQueue.now();
    stream->task.reset();
    FileLog::log(stream->label + QStringLiteral(" complete (") + QString::number(text::characterCount(answer)) +
                 QStringLiteral(" chars, ") + text::fixed(*stream->elapsed(), 2) + QStringLiteral("s)"));
    if (kind == SuggestionKind::rewrite && m_streams.size() == 1 && isUnchanged(source, answer)) {
        FileLog::log(QStringLiteral("suggestion identical to draft, skipping"));
        m_panel.hide();
        m_streamSource.reset();
        return;
    }
    showAnswer(*stream, index);
    acceptForDebugging();
}

void TypingMonitor::showAnswer(const ModelStream &stream, int index) {
    if (m_panel.isVisible()) {
        m_panel.finishCard(index, *stream.final, text::fixed(*stream.elapsed(), 1) + u's');
    } else if (m_currentElement) {
        presentStreams(*m_currentElement);
    }
}

} // namespace quillory
