// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

namespace platform::desktop {

/// Cuts a body that arrives in pieces into lines. Lines end in LF, CR LF or CR; a UTF-8 byte order mark before the
/// first one is dropped. A line is given as soon as its break is in, even if it may be the first half of a CR LF.
class LineSplitter {
  public:
    /// Takes more of the body.
    void feed(const QByteArray &bytes);
    /// Takes the end of the body.
    void end() { m_ended = true; }
    /// The next line without its break; after the end also the text behind the last break, if there is any. Absent when
    /// more of the body is needed, or nothing is left.
    [[nodiscard]] std::optional<QByteArray> next();
    /// How many bytes wait for their line break, after next() was absent.
    [[nodiscard]] qsizetype pending() const { return m_bytes.size() - m_start; }

  private:
    void skipByteOrderMark();
    [[nodiscard]] qsizetype findBreak();

    QByteArray m_bytes;
    qsizetype m_start = 0;
    /// Searched up to here: a long line that comes in small pieces is searched once, not once per piece.
    qsizetype m_searched = 0;
    bool m_atBeginning = true;
    bool m_skipLF = false;
    bool m_ended = false;
};

} // namespace platform::desktop
