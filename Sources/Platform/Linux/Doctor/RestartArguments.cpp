// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/RestartArguments.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace platform::desktop {

namespace {

constexpr std::array chromiumBeginnings{
    QLatin1StringView("org.chromium."),       QLatin1StringView("com.google.Chrome"),
    QLatin1StringView("com.microsoft.edge"),  QLatin1StringView("com.brave.Browser"),
    QLatin1StringView("com.vivaldi.Vivaldi"), QLatin1StringView("com.operasoftware.Opera"),
};
constexpr std::array electronWrappers{QLatin1StringView("net.whatsapp.whatsdesk"),
                                      QLatin1StringView("net.whatsapp.altus")};

/// The longest beginning that is a folder; a profile's path may have spaces, and an address may follow it.
QString folderAtBeginning(QString text, const std::function<bool(const QString &)> &isFolder) {
    while (!text.isEmpty() && !isFolder(text)) {
        text.truncate(std::max<qsizetype>(text.lastIndexOf(u' '), 0));
    }
    return text;
}

/// The name of a profile, which may have spaces, without the addresses and files after it.
QString profileAtBeginning(const QString &text) {
    static const QRegularExpression profile(
        QStringLiteral("^(?:(?:Default|(?:Guest|System) Profile|Profile \\d+)(?= |$)|.+?(?= [a-z][a-z0-9+.-]*:| /|$))"),
        QRegularExpression::CaseInsensitiveOption);
    return profile.match(text).captured();
}

/// Of the one piece that Chromium makes of its arguments, those that say which windows to open. Where one of them ends
/// is not written; what is cut off too late would open a new profile, in which nobody is logged in.
QStringList windowArguments(const QString &joined, const std::function<bool(const QString &)> &isFolder) {
    static const QRegularExpression wanted(
        QStringLiteral(" --(user-data-dir|profile-directory|app|app-id)=(.+?)(?= --|$)"));
    QStringList arguments;
    for (const auto &found : wanted.globalMatch(joined)) {
        const QString name = found.captured(1);
        QString value = found.captured(2);
        if (name == QStringLiteral("user-data-dir")) {
            value = folderAtBeginning(value, isFolder);
        } else if (name == QStringLiteral("profile-directory")) {
            value = profileAtBeginning(value);
        } else {
            value = value.section(u' ', 0, 0);
        }
        if (!value.isEmpty()) {
            arguments += QStringLiteral("--%1=%2").arg(name, value);
        }
    }
    return arguments;
}

} // namespace

ProgramKind programKind(const QString &bundleIdentifier) {
    const auto isBeginning = [&](QLatin1StringView beginning) { return bundleIdentifier.startsWith(beginning); };
    if (std::ranges::any_of(chromiumBeginnings, isBeginning)) {
        return ProgramKind::chromium;
    }
    if (std::ranges::find(electronWrappers, bundleIdentifier) != electronWrappers.end()) {
        return ProgramKind::electron;
    }
    return bundleIdentifier.startsWith(QStringLiteral("org.mozilla.")) ? ProgramKind::mozilla : ProgramKind::other;
}

QStringList restartArguments(ProgramKind kind, const QStringList &commandLine, const QString &executable,
                             const std::function<bool(const QString &)> &isFolder) {
    QStringList arguments = commandLine.mid(1);
    // Chromium and its kin put their executable and the arguments into one piece.
    if (kind == ProgramKind::chromium && commandLine.size() == 1) {
        arguments = windowArguments(commandLine.first(), isFolder);
    } else if (commandLine.size() == 1 && commandLine.first().startsWith(executable + u' ')) {
        arguments = commandLine.first().mid(executable.size()).split(u' ', Qt::SkipEmptyParts);
    }
    if (kind == ProgramKind::chromium && arguments.filter(QStringLiteral("--app")).isEmpty()) {
        arguments.prepend(QStringLiteral("--restore-last-session"));
    }
    if (kind == ProgramKind::chromium || kind == ProgramKind::electron) {
        arguments.removeIf([](const QString &argument) {
            return argument.startsWith(QStringLiteral("--ozone-platform=")); // the last one would count
        });
        arguments.prepend(QStringLiteral("--ozone-platform=x11"));
    }
    return arguments;
}

} // namespace platform::desktop
