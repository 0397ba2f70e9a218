// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/ProgramTrial.h"

#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/URLSession.h"

#include <QProcess>
#include <QScopeGuard>

#include <algorithm>
#include <csignal>
#include <linux/close_range.h>
#include <unistd.h>

namespace platform::desktop {

bool canStart(const QString &bundle, std::chrono::milliseconds patience, const std::stop_token &stop) {
    constexpr auto step = std::chrono::milliseconds(50); // between two looks at whether to stop
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_BIND_NOW"), QStringLiteral("1")); // finds all functions that are missing
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { // a process group of its own, with no open files
        ::setpgid(0, 0);
        ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    });
    process.start(bundle + u'/' + QLatin1StringView(bundleName::program), {QStringLiteral("--version")});
    const auto end = qScopeGuard([&process, group = static_cast<pid_t>(process.processId())] {
        if (process.state() != QProcess::NotRunning) {
            ::kill(-group, SIGKILL); // and what it started
            process.kill();
            process.waitForFinished();
        }
    });
    for (auto left = patience; left.count() > 0 && process.state() != QProcess::NotRunning; left -= step) {
        if (stop.stop_requested()) {
            throw CancellationError();
        }
        process.waitForFinished(static_cast<int>(std::min(step, left).count()));
    }
    return process.state() == QProcess::NotRunning && process.error() != QProcess::FailedToStart &&
           process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace platform::desktop
