// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/ProgramTrial.h"

#include "Platform/Linux/Updates/Manifest.h"
#include "Platform/URLSession.h"

#include <QProcess>

#include <algorithm>
#include <csignal>
#include <linux/close_range.h>
#include <unistd.h>

namespace platform::desktop {

namespace {
/// A process group of its own, with no input, output or open files.
class TrialProcess {
  public:
    explicit TrialProcess(const QString &program) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_BIND_NOW"), QStringLiteral("1")); // finds all functions that are missing
        m_process.setProcessEnvironment(environment);
        m_process.setStandardInputFile(QProcess::nullDevice());
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.setChildProcessModifier([] {
            ::setpgid(0, 0);
            ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
        });
        m_process.start(program, {QStringLiteral("--version")});
        m_group = static_cast<pid_t>(m_process.processId());
    }
    ~TrialProcess() {
        if (m_process.state() != QProcess::NotRunning) {
            ::kill(-m_group, SIGKILL); // and what it started
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    TrialProcess(const TrialProcess &) = delete;
    TrialProcess &operator=(const TrialProcess &) = delete;

    [[nodiscard]] bool endsWithin(std::chrono::milliseconds time) {
        m_process.waitForFinished(static_cast<int>(time.count()));
        return m_process.state() == QProcess::NotRunning;
    }
    [[nodiscard]] bool hasSucceeded() const {
        return m_process.error() != QProcess::FailedToStart && m_process.exitStatus() == QProcess::NormalExit &&
               m_process.exitCode() == 0;
    }

  private:
    QProcess m_process;
    pid_t m_group = 0;
};
} // namespace

ProgramTrial tryProgram(const QString &bundle, std::chrono::milliseconds patience, const std::stop_token &stop) {
    constexpr auto step = std::chrono::milliseconds(50); // between two looks at whether to stop
    TrialProcess process(bundle + u'/' + QLatin1StringView(bundleName::program));
    for (auto left = patience; left.count() > 0; left -= step) {
        if (stop.stop_requested()) {
            throw CancellationError();
        }
        if (process.endsWithin(std::min(step, left))) {
            return process.hasSucceeded() ? ProgramTrial::works : ProgramTrial::fails;
        }
    }
    return ProgramTrial::hangs;
}

} // namespace platform::desktop
