// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/Manifest.h"

#include <QList>
#include <QStringDecoder>

#include <algorithm>

namespace platform::desktop {

namespace {
const QByteArray manifestTitle = "Quillory bundle manifest 1";
constexpr qsizetype longestPath = 512;
constexpr qsizetype deepestPath = 16;
constexpr int octal = 8;

bool isSafeName(const QByteArray &name) {
    return !name.isEmpty() && name != "." && name != "..";
}

/// Reads "folder MODE PATH" or "file MODE SIZE DIGEST PATH". That this is the only way to write it is checked later, by
/// writing it again.
std::optional<BundleEntry> entryFrom(const QByteArray &line) {
    const bool isFolder = line.startsWith("folder ");
    const QList<QByteArray> words = line.split(' ');
    const qsizetype before = isFolder ? 2 : 4;
    if (words.size() <= before) {
        return std::nullopt;
    }
    BundleEntry entry{.path = words.sliced(before).join(' '),
                      .isFolder = isFolder,
                      .mode = words.at(1).toUInt(nullptr, octal),
                      .size = isFolder ? 0 : words.at(2).toLongLong(),
                      .digest = isFolder ? QByteArray() : words.at(3)};
    if (!isSafePath(entry.path)) {
        return std::nullopt;
    }
    return entry;
}

QByteArray lineFor(const BundleEntry &entry) {
    const QByteArray mode = QByteArray::number(entry.mode, octal).rightJustified(4, '0');
    if (entry.isFolder) {
        return "folder " + mode + ' ' + entry.path + '\n';
    }
    return "file " + mode + ' ' + QByteArray::number(entry.size) + ' ' + entry.digest + ' ' + entry.path + '\n';
}
} // namespace

bool isSafePath(const QByteArray &path) {
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString text = decode(path);
    const auto isControl = [](QChar character) {
        return character.category() == QChar::Other_Control || character == QLatin1Char('\\');
    };
    if (path.size() > longestPath || decode.hasError() || std::ranges::any_of(text, isControl) ||
        text.normalized(QString::NormalizationForm_C) != text) {
        return false;
    }
    const QList<QByteArray> names = path.split('/');
    return names.size() <= deepestPath && std::ranges::all_of(names, isSafeName);
}

QByteArray Manifest::written() const {
    QByteArray text = manifestTitle + "\napplication " + identifier.toUtf8() + "\nversion " + version.toUtf8() +
                      "\narchitecture " + architecture.toUtf8() + "\nteam " + team.toUtf8() + '\n';
    for (const BundleEntry &entry : entries) {
        text += lineFor(entry);
    }
    return text;
}

std::optional<Manifest> Manifest::parsed(const QByteArray &text) {
    constexpr qsizetype headLines = 5;
    const QList<QByteArray> lines = text.split('\n');
    if (lines.size() <= headLines) {
        return std::nullopt;
    }
    // The title and the labels, too, are checked by writing them again.
    const auto rest = [&lines](qsizetype at) {
        return QString::fromUtf8(lines[at].sliced(lines[at].indexOf(' ') + 1));
    };
    Manifest manifest{rest(1), rest(2), rest(3), rest(4), {}};
    for (const QByteArray &line : lines.sliced(headLines, lines.size() - headLines - 1)) {
        const std::optional<BundleEntry> entry = entryFrom(line);
        if (!entry || (!manifest.entries.empty() && manifest.entries.back().path >= entry->path)) {
            return std::nullopt;
        }
        manifest.entries.push_back(*entry);
    }
    return manifest.written() == text ? std::optional(std::move(manifest)) : std::nullopt;
}

} // namespace platform::desktop
