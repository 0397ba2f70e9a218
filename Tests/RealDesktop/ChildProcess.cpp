// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>
#include <thread>

namespace quillory::test {

ChildProcess::ChildProcess(const std::vector<std::string> &arguments, Output output)
    : m_process(std::make_unique<QProcess>()) {
    m_process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    m_process->setInputChannelMode(QProcess::ForwardedInputChannel);
    if (output != Output::shown) {
        m_process->setProcessChannelMode(QProcess::SeparateChannels);
        m_process->setStandardErrorFile(QProcess::nullDevice());
    }
    if (output == Output::dropped) {
        m_process->setStandardOutputFile(QProcess::nullDevice());
    }
    QStringList words;
    for (const std::string &argument : arguments) {
        words.append(QString::fromStdString(argument));
    }
    const QString program = words.takeFirst();
    m_process->start(program, words);
    if (!m_process->waitForStarted()) {
        throw std::runtime_error("cannot start " + arguments.front());
    }
}

ChildProcess &ChildProcess::operator=(ChildProcess &&other) noexcept {
    end();
    m_process = std::move(other.m_process);
    return *this;
}

pid_t ChildProcess::pid() const {
    return static_cast<pid_t>(m_process->processId());
}

bool ChildProcess::isRunning() {
    return m_process != nullptr && m_process->state() != QProcess::NotRunning && !m_process->waitForFinished(0);
}

std::string ChildProcess::line() {
    while (!m_process->canReadLine() && m_process->waitForReadyRead()) {
    }
    return m_process->readLine().trimmed().toStdString();
}

QByteArray ChildProcess::rest() {
    m_process->waitForFinished(60'000);
    return m_process->readAllStandardOutput();
}

int ChildProcess::end() {
    if (isRunning()) {
        m_process->terminate();
        kill(pid(), SIGCONT);
        if (!m_process->waitForFinished(2000)) {
            m_process->kill();
            m_process->waitForFinished(2000);
        }
    }
    if (m_process == nullptr) {
        return 0;
    }
    return m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : 128 + m_process->exitCode();
}

int run(const std::vector<std::string> &arguments, Output output) {
    ChildProcess program(arguments, output);
    while (program.isRunning()) {
        sleepBriefly();
    }
    return program.end();
}

QByteArray outputOf(const std::vector<std::string> &arguments) {
    return ChildProcess(arguments, Output::read).rest();
}

void sleepBriefly() {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

long long millisecondsNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

} // namespace quillory::test
