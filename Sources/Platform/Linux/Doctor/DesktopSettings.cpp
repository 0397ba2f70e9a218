// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Doctor/DesktopSettings.h"

#include <QProcess>
#include <QStringList>

namespace platform::desktop::desktopSettings {

namespace {

/// The output of gsettings; absent when it is not installed, fails, or takes too long.
std::optional<QByteArray> askTool(const QStringList &verbAndValue) {
    constexpr int patience = 3000;
    QStringList arguments{verbAndValue.first(), QStringLiteral("org.gnome.desktop.interface"),
                          QStringLiteral("toolkit-accessibility")};
    arguments += verbAndValue.sliced(1);
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("gsettings"), arguments);
    if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0) {
        return std::nullopt;
    }
    return tool.readAllStandardOutput().trimmed();
}

} // namespace

std::optional<bool> isAccessibilityKept() {
    const auto answer = askTool({QStringLiteral("get")});
    return answer ? std::optional(*answer == "true") : std::nullopt;
}

bool keepAccessibility() {
    return askTool({QStringLiteral("set"), QStringLiteral("true")}).has_value();
}

} // namespace platform::desktop::desktopSettings
