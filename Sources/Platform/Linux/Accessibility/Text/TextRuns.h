// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace platform::desktop::atspi {

/// A range of text in code points, as the bus counts; without the character at its end.
struct CodePointRange {
    int from = 0;
    int to = 0;
    friend bool operator==(const CodePointRange &, const CodePointRange &) = default;
};

/// A stretch of an element's own text.
struct TextRun {
    QString text;
    /// How many child elements come before it.
    std::size_t childrenBefore = 0;
    /// The ranges whose frames, taken together, are its own.
    std::vector<CodePointRange> measured;
};

/// A block's text into which Firefox has folded the text leaves of a page. This takes it apart into the static texts
/// that other browsers give: at each U+FFFC, which stands for a child element, and at each change of style that looks
/// like the end of a block, because the sender, the message and its time have sizes of their own. A word in bold stays
/// in its line.
class FoldedText {
  public:
    explicit FoldedText(const QString &text);

    /// Where the style is to be asked for next; nothing once all that matters is known.
    [[nodiscard]] std::optional<int> unknownStyle() const;
    /// The style from unknownStyle() on ends there; it counts as the last one if that makes no sense.
    void addStyle(int to, const std::string &fontSize);
    /// Its stretches, in order. Those found so far, while there are unknown styles.
    [[nodiscard]] const std::vector<TextRun> &runs() const { return m_runs; }
    /// The text as it was given.
    [[nodiscard]] const QString &text() const { return m_text; }

  private:
    [[nodiscard]] bool isBlank(CodePointRange range) const;
    [[nodiscard]] bool readsOn(int offset) const;
    [[nodiscard]] std::vector<CodePointRange> measured(CodePointRange range) const;
    [[nodiscard]] CodePointRange trimmed(CodePointRange range) const;
    void finishRun(int to);

    QString m_text;
    std::u32string m_characters;
    struct Stretch {
        CodePointRange range;
        std::size_t childrenBefore = 0;
    };
    std::vector<Stretch> m_stretches;
    std::vector<TextRun> m_runs;
    /// The stretch whose styles are unknown from an offset on; where the present run in it began, and its font size.
    std::size_t m_stretch = 0;
    int m_unknownFrom = 0;
    int m_runFrom = 0;
    std::optional<std::string> m_fontSize;
    int m_styles = 0;
};

} // namespace platform::desktop::atspi
