// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace platform::desktop::atspi {

/// Offsets in a text, in code points; the end is not part of it.
struct TextRange {
    int from = 0;
    int to = 0;
    friend bool operator==(const TextRange &, const TextRange &) = default;
};

/// A stretch of an element's own text.
struct TextRun {
    QString text;
    /// The child elements that come before it.
    std::size_t childrenBefore = 0;
    /// The ranges whose frames, taken together, are its own.
    std::vector<TextRange> measured;
};

/// A block's text into which the text leaves of a page were folded, as Firefox does it; taken apart again they are the
/// static texts that other browsers give. A U+FFFC stands for each child element and parts the text, and so does a
/// change of style that looks like the end of a block: the sender, the message and its time have sizes of their own.
/// A word in bold stays in its line.
class FoldedText {
  public:
    explicit FoldedText(const QString &text);

    /// Where the style is to be asked for next; nothing once all that matters is known.
    [[nodiscard]] std::optional<int> unknownStyle() const;
    /// The style from unknownStyle() on holds until there. What makes no sense holds to the end.
    void addStyle(int to, const std::string &fontSize);
    /// Its stretches, in order. Those found so far, while there are unknown styles.
    [[nodiscard]] const std::vector<TextRun> &runs() const { return m_runs; }
    /// The text as it was given.
    [[nodiscard]] const QString &text() const { return m_text; }

  private:
    [[nodiscard]] bool isBlank(TextRange range) const;
    [[nodiscard]] bool readsOn(int offset) const;
    [[nodiscard]] std::vector<TextRange> measured(TextRange range) const;
    [[nodiscard]] TextRange trimmed(TextRange range) const;
    void finishRun(int to);

    QString m_text;
    std::u32string m_characters;
    struct Stretch {
        TextRange range;
        std::size_t childrenBefore = 0;
    };
    std::vector<Stretch> m_stretches;
    std::vector<TextRun> m_runs;
    /// The stretch whose styles are unknown from an offset on, and where in it the present run began, in what size.
    std::size_t m_stretch = 0;
    int m_unknownFrom = 0;
    int m_runFrom = 0;
    std::optional<std::string> m_fontSize;
    int m_styles = 0;
};

} // namespace platform::desktop::atspi
