// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Network/LineSplitter.h"

#include <algorithm>

namespace platform::desktop {

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
}

void LineSplitter::feed(const QByteArray &bytes) {
    m_bytes.remove(0, m_start);
    m_searched -= m_start;
    m_start = 0;
    m_bytes.append(bytes);
}

std::optional<QByteArray> LineSplitter::next() {
    skipByteOrderMark();
    if (m_atBeginning) {
        return std::nullopt;
    }
    if (m_skipLF && m_start < m_bytes.size()) {
        m_start += m_bytes.at(m_start) == '\n' ? 1 : 0;
        m_searched = std::max(m_searched, m_start);
        m_skipLF = false;
    }
    const qsizetype end = findBreak();
    const bool whole = end < m_bytes.size();
    if (!whole && (!m_ended || m_start == end)) {
        return std::nullopt;
    }
    QByteArray line = m_bytes.mid(m_start, end - m_start);
    m_skipLF = whole && m_bytes.at(end) == '\r';
    m_start = m_searched = whole ? end + 1 : end;
    return line;
}

void LineSplitter::skipByteOrderMark() {
    if (!m_atBeginning) {
        return;
    }
    if (m_bytes.startsWith(byteOrderMark)) {
        m_start = m_searched = byteOrderMark.size();
        m_atBeginning = false;
    } else if (m_ended || !byteOrderMark.startsWith(m_bytes)) {
        m_atBeginning = false;
    }
}

qsizetype LineSplitter::findBreak() {
    const auto found = std::find_if(m_bytes.cbegin() + m_searched, m_bytes.cend(),
                                    [](char byte) { return byte == '\n' || byte == '\r'; });
    m_searched = found - m_bytes.cbegin();
    return m_searched;
}

} // namespace platform::desktop
