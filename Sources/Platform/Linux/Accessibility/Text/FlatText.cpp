// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Text/FlatText.h"

#include <algorithm>

namespace platform::desktop::atspi {

namespace {

// Collects text and knows when the next piece must start on a new line.
class Writer {
  public:
    void write(QStringView text) {
        if (text.isEmpty()) {
            return;
        }
        beginLineIfDue();
        m_text.append(text);
        m_atBlockStart = false;
    }
    void beginBlock() {
        if (!m_atBlockStart) {
            m_lineDue = true;
        }
        beginLineIfDue();
        m_atBlockStart = true;
    }
    void endBlock() {
        m_lineDue = true;
        m_atBlockStart = false;
    }
    [[nodiscard]] QString take() { return std::move(m_text); }

  private:
    void beginLineIfDue() {
        if (std::exchange(m_lineDue, false)) {
            m_text.append(u'\n');
        }
    }

    QString m_text;
    bool m_lineDue = false;
    bool m_atBlockStart = true;
};

void write(Writer &writer, const TextPiece &piece);

// The last line break of a block ends its last line; it does not begin another.
QStringView withoutFinalBreak(const QString &text) {
    return text.endsWith(u'\n') ? QStringView(text).chopped(1) : QStringView(text);
}

void writeContent(Writer &writer, const TextPiece &piece) {
    const QStringView text = piece.isBlock ? withoutFinalBreak(piece.text) : QStringView(piece.text);
    qsizetype start = 0;
    for (const auto &embedded : piece.embedded) {
        const auto place = text.indexOf(QChar(QChar::ObjectReplacementCharacter), start);
        if (place < 0) {
            break;
        }
        writer.write(text.mid(start, place - start));
        write(writer, embedded);
        start = place + 1;
    }
    writer.write(text.mid(start));
}

void write(Writer &writer, const TextPiece &piece) {
    if (!piece.isBlock) {
        writeContent(writer, piece);
        return;
    }
    writer.beginBlock();
    writeContent(writer, piece);
    writer.endBlock();
}

} // namespace

QString flatText(const TextPiece &piece) {
    Writer writer;
    writeContent(writer, piece);
    return writer.take();
}

QString cleanText(const QString &text) {
    // Firefox writes a byte order mark after every character beyond the basic plane.
    constexpr QChar filler(0xFEFF);
    if (!text.contains(filler)) {
        return text;
    }
    QString clean;
    clean.reserve(text.size());
    for (const QChar unit : text) {
        if (unit != filler || clean.isEmpty() || !clean.back().isLowSurrogate()) {
            clean.append(unit);
        }
    }
    return clean;
}

qsizetype utf16Offset(const QString &text, qsizetype codePoints) {
    qsizetype units = 0;
    for (; codePoints > 0 && units < text.size(); --codePoints) {
        const bool isPair =
            text[units].isHighSurrogate() && units + 1 < text.size() && text[units + 1].isLowSurrogate();
        units += isPair ? 2 : 1;
    }
    return units;
}

qsizetype codePointOffset(const QString &text, qsizetype utf16Units) {
    const auto end = std::clamp<qsizetype>(utf16Units, 0, text.size());
    qsizetype codePoints = 0;
    for (qsizetype i = 0; i < end; ++i) {
        const bool isSecondHalf = text[i].isLowSurrogate() && i > 0 && text[i - 1].isHighSurrogate();
        codePoints += isSecondHalf ? 0 : 1;
    }
    return codePoints;
}

} // namespace platform::desktop::atspi
