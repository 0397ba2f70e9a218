// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// What the model service's answers say. Pure functions of bytes that anybody may have written.
namespace quillory {

/// One line of a streamed answer.
struct StreamEvent {
    /// The answer is over.
    bool isDone = false;
    /// The next piece of the answer; empty when the line carries none.
    QString piece;
    friend bool operator==(const StreamEvent &, const StreamEvent &) = default;
};

/// Reads one line. A line that is no event, or an event of another shape, carries nothing.
[[nodiscard]] StreamEvent streamEvent(const QByteArray &line);

/// The content of an answer that came whole, untrimmed. Throws nlohmann's parse error when it is not JSON, and
/// RewriteError when it is JSON of another shape.
[[nodiscard]] QString wholeAnswer(const QByteArray &body);

} // namespace quillory
