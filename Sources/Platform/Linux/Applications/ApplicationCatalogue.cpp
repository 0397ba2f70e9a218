// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/ApplicationCatalogue.h"

#include "Platform/Linux/StandardError.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringConverter>

#include <algorithm>

namespace platform::desktop {

namespace {
constexpr qint64 largestFile = 1 << 20;

bool isBundleIdentifier(const QString &text) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z0-9_-]+(\\.[A-Za-z0-9_-]+)+")));
    return form.match(text).hasMatch();
}

/// False when the line is neither entry nor comment.
bool takeLine(const QString &line, QHash<QString, QString> &identifiers) {
    if (line.isEmpty() || line.startsWith(u'#')) {
        return true;
    }
    const qsizetype equals = line.lastIndexOf(u'=');
    QString name = line.left(std::max<qsizetype>(equals, 0)).trimmed();
    if (constexpr QLatin1StringView suffix(".desktop"); name.endsWith(suffix)) {
        name.chop(suffix.size());
    }
    const QString identifier = line.sliced(equals + 1).trimmed();
    if (name.isEmpty() || !isBundleIdentifier(identifier)) {
        return false;
    }
    identifiers.insert(name, identifier);
    return true;
}

QHash<QString, QString> linesOfUser(const QString &path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    ApplicationLines lines = parseApplicationLines(file.read(largestFile));
    constexpr qsizetype mostNamed = 20;
    for (const int number : lines.badLines.first(std::min(mostNamed, lines.badLines.size()))) {
        sayOnStandardError(QStringLiteral("%1, line %2 is left out: it does not read \"program = bundle.identifier\"")
                               .arg(path)
                               .arg(number));
    }
    if (lines.badLines.size() > mostNamed) {
        sayOnStandardError(QStringLiteral("%1: %2 more such lines").arg(path).arg(lines.badLines.size() - mostNamed));
    }
    return lines.identifiers;
}
} // namespace

ApplicationLines parseApplicationLines(QByteArrayView text) {
    ApplicationLines result;
    const QByteArray bytes = text.toByteArray();
    int number = 0;
    for (const QByteArray &line : bytes.split('\n')) {
        ++number;
        QStringDecoder decode(QStringConverter::Utf8); // drops a byte order mark
        const QString decoded = decode(line);
        if (decode.hasError() || decoded.contains(QChar::Null) || !takeLine(decoded.trimmed(), result.identifiers)) {
            result.badLines += number;
        }
    }
    return result;
}

ApplicationCatalogue::ApplicationCatalogue(const QString &userFile)
    : m_userLines(linesOfUser(userFile)), m_builtInLines(parseApplicationLines(builtInApplications()).identifiers) {}

std::optional<QString> ApplicationCatalogue::bundleIdentifier(const QStringList &names) const {
    for (const auto *const lines : {&m_userLines, &m_builtInLines}) {
        for (const QString &name : names) {
            if (const auto found = lines->find(name); found != lines->end()) {
                return *found;
            }
        }
    }
    return std::nullopt;
}

} // namespace platform::desktop
