// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/OtherPrograms.h"

namespace platform::desktop {

namespace {
bool isOurs(const QString &variable) {
    return variable == QStringLiteral("OPENROUTER_API_KEY") || variable.startsWith(QStringLiteral("QUILLORY_"));
}
} // namespace

void keepApart(QProcess &program) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : environment.keys()) {
        if (isOurs(variable)) {
            environment.remove(variable);
        }
    }
    program.setProcessEnvironment(environment);
    program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
}

} // namespace platform::desktop
