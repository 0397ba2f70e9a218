// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Text/TextRuns.h"

#include "Platform/Linux/Accessibility/Text/FlatText.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {

constexpr char32_t standIn = 0xFFFC;
// Firefox writes one after every character beyond the basic plane.
constexpr char32_t filler = 0xFEFF;
// Bounds the questions about a text that is coloured letter by letter, or mixes directions word by word.
constexpr int mostStyles = 24;
constexpr std::size_t mostMeasured = 12;

bool isBlankCharacter(char32_t character) {
    return character == filler || QChar::isSpace(character);
}

bool isOpening(char32_t character) {
    const auto category = QChar::category(character);
    return category == QChar::Punctuation_Open || category == QChar::Punctuation_InitialQuote || character == U'"' ||
           character == U'\'';
}

// 1 for letters that are written from left to right, -1 for the others, 0 for characters that take either direction.
int direction(char32_t character) {
    switch (QChar::direction(character)) {
    case QChar::DirL:
        return 1;
    case QChar::DirR:
    case QChar::DirAL:
        return -1;
    default:
        return 0;
    }
}

} // namespace

FoldedText::FoldedText(const QString &text) : m_text(text), m_characters(text.toStdU32String()) {
    const int size = static_cast<int>(m_characters.size());
    std::size_t children = 0;
    for (int from = 0, i = 0; i <= size; ++i) {
        if (i < size && m_characters[static_cast<std::size_t>(i)] != standIn) {
            continue;
        }
        if (!isBlank({from, i})) {
            m_stretches.push_back({{from, i}, children});
        }
        ++children;
        from = i + 1;
    }
    if (!m_stretches.empty()) {
        m_unknownFrom = m_runFrom = m_stretches.front().range.from;
    }
}

bool FoldedText::isBlank(CodePointRange range) const {
    return std::all_of(m_characters.begin() + range.from, m_characters.begin() + range.to, isBlankCharacter);
}

std::optional<int> FoldedText::unknownStyle() const {
    return m_stretch < m_stretches.size() ? std::optional(m_unknownFrom) : std::nullopt;
}

void FoldedText::addStyle(int to, const std::string &fontSize) {
    const auto stretch = m_stretches[m_stretch].range;
    ++m_styles;
    const bool isSense = to > m_unknownFrom && m_styles < mostStyles;
    const int end = isSense ? std::min(to, stretch.to) : stretch.to;
    const bool goesOn = !m_fontSize || isBlank({m_unknownFrom, end}) || isBlank({m_runFrom, m_unknownFrom}) ||
                        (fontSize == *m_fontSize && readsOn(m_unknownFrom));
    if (!goesOn) {
        finishRun(m_unknownFrom);
    }
    if (!m_fontSize || !isBlank({m_unknownFrom, end})) {
        m_fontSize = fontSize;
    }
    m_unknownFrom = end;
    if (end < stretch.to) {
        return;
    }
    finishRun(end);
    m_fontSize.reset();
    m_styles = 0;
    if (++m_stretch < m_stretches.size()) {
        m_unknownFrom = m_runFrom = m_stretches[m_stretch].range.from;
    }
}

// Whether the text before and after an offset reads like one line: blocks that are folded together have no space in
// between, while a word set apart by its style has one, or punctuation.
bool FoldedText::readsOn(int offset) const {
    auto before = static_cast<std::size_t>(offset);
    while (before > 0 && m_characters[before - 1] == filler) {
        --before;
    }
    const char32_t next = m_characters[static_cast<std::size_t>(offset)];
    if (before == 0 || QChar::isSpace(m_characters[before - 1]) || isOpening(m_characters[before - 1])) {
        return true;
    }
    return !QChar::isLetterOrNumber(next);
}

void FoldedText::finishRun(int to) {
    const auto from = static_cast<std::size_t>(m_runFrom);
    const auto characters = std::u32string_view(m_characters).substr(from, static_cast<std::size_t>(to) - from);
    const auto text = QString::fromUcs4(characters.data(), static_cast<qsizetype>(characters.size()));
    m_runs.push_back({cleanText(text), m_stretches[m_stretch].childrenBefore, measured({m_runFrom, to})});
    m_runFrom = to;
}

// For a range that ends with the filler Firefox gives the frame of the first character alone; for one that ends with a
// space before a child it includes the child's frame.
CodePointRange FoldedText::trimmed(CodePointRange range) const {
    const auto isBlankAt = [&](int offset) { return isBlankCharacter(m_characters[static_cast<std::size_t>(offset)]); };
    while (range.to > range.from && isBlankAt(range.to - 1)) {
        --range.to;
    }
    while (range.from < range.to && isBlankAt(range.from)) {
        ++range.from;
    }
    return range;
}

// A range's frame spans its first and last character. In a line of both directions these may stand in its middle, so
// each stretch of one direction is measured on its own.
std::vector<CodePointRange> FoldedText::measured(CodePointRange range) const {
    std::vector<CodePointRange> ranges;
    int current = 0;
    int from = range.from;
    for (int i = range.from; i < range.to && ranges.size() + 1 < mostMeasured; ++i) {
        const int here = direction(m_characters[static_cast<std::size_t>(i)]);
        if (here != 0 && current != 0 && here != current) {
            ranges.push_back(trimmed({from, i}));
            from = i;
        }
        current = here != 0 ? here : current;
    }
    ranges.push_back(trimmed({from, range.to}));
    return ranges;
}

} // namespace platform::desktop::atspi
