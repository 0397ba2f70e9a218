// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// Reads the answers of the model service. Pure functions; the bytes are not trusted.
namespace quillory {

/// One line of a streamed answer.
struct StreamEvent {
    /// The answer is over.
    bool isDone = false;
    /// The next piece of the answer; empty if the line has none.
    QString piece;
    friend bool operator==(const StreamEvent &, const StreamEvent &) = default;
};

/// Reads one line. A line that is not an event, or an event of another shape, gives an empty result.
[[nodiscard]] StreamEvent streamEvent(const QByteArray &line);

/// The content, untrimmed, of an answer that was not streamed. Throws nlohmann's parse error if it is not JSON, and
/// RewriteError if it is JSON of another shape.
[[nodiscard]] QString wholeAnswer(const QByteArray &body);

} // namespace quillory
