// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/Browser.h"

#include <QFile>
#include <QStandardPaths>

#include <csignal>

namespace quillory::test {

namespace {

std::vector<std::string> commandLine(int pagePort, const QString &profile, const Browser::Options &options) {
    const std::string port = std::to_string(pagePort);
    std::vector<std::string> arguments{"chromium",
                                       "--no-sandbox",
                                       "--test-type",
                                       "--disable-gpu",
                                       "--disable-quic",
                                       "--disable-dev-shm-usage",
                                       "--no-first-run",
                                       "--no-default-browser-check",
                                       "--disable-background-networking",
                                       "--disable-component-update",
                                       "--disable-sync",
                                       "--password-store=basic",
                                       "--log-level=3",
                                       "--lang=en-US",
                                       "--window-position=40,20",
                                       "--window-size=1100,800",
                                       "--ignore-certificate-errors",
                                       "--user-data-dir=" + profile.toStdString(),
                                       "--host-resolver-rules=MAP web.whatsapp.com 127.0.0.1:" + port +
                                           ", MAP shop.example 127.0.0.1:" + port + ", MAP * ~NOTFOUND"};
    if (options.forceAccessibility) {
        arguments.emplace_back("--force-renderer-accessibility");
    }
    arguments.push_back((options.wholeWindow ? "" : "--app=") + options.address.toStdString());
    return arguments;
}

} // namespace

QString Browser::whatIsMissing() {
    if (QStandardPaths::findExecutable(QStringLiteral("chromium")).isEmpty()) {
        return QStringLiteral("chromium is not installed");
    }
    return QFile::exists(QStringLiteral(QUILLORY_PAGE_BUNDLE)) ? QString()
                                                               : QStringLiteral("the chat page was built without npm");
}

Browser::Browser(int pagePort, const QString &profile, const Options &options)
    : m_process(commandLine(pagePort, profile, options), Output::dropped) {}

void Browser::freeze() const {
    kill(m_process.pid(), SIGSTOP);
}

void Browser::thaw() const {
    kill(m_process.pid(), SIGCONT);
}

} // namespace quillory::test
