// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/Browser.h"

#include "RealDesktop/BrowserSettings.h"

#include <QFile>
#include <QStandardPaths>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

using Arguments = std::vector<std::string>;

Arguments chromium(int pagePort, const QString &profile, const Browser::Options &options) {
    const std::string port = std::to_string(pagePort);
    const QString address = u"https://%1/%2"_s.arg(options.host, options.query);
    Arguments arguments = browserSettings::chromiumSwitches();
    arguments.insert(arguments.begin(), "chromium");
    arguments.insert(arguments.end(),
                     {"--window-position=40,20", "--window-size=1100,800", "--ignore-certificate-errors",
                      "--host-resolver-rules=MAP web.whatsapp.com 127.0.0.1:" + port +
                          ", MAP shop.example 127.0.0.1:" + port + ", MAP * ~NOTFOUND",
                      "--user-data-dir=" + profile.toStdString(),
                      (options.wholeWindow ? "" : "--app=") + address.toStdString()});
    if (options.forceAccessibility) {
        arguments.emplace_back("--force-renderer-accessibility");
    }
    return arguments;
}

Arguments firefox(int pagePort, const QString &profile, const Browser::Options &options) {
    browserSettings::makeFirefoxProfile(profile);
    const QString address = u"http://%1:%2/%3"_s.arg(options.host).arg(pagePort).arg(options.query);
    return {"env",
            options.forceAccessibility ? "GNOME_ACCESSIBILITY=1" : "-uGNOME_ACCESSIBILITY",
            "MOZ_CRASHREPORTER_DISABLE=1",
            "firefox-esr",
            "--no-remote",
            "--profile",
            profile.toStdString(),
            "--width",
            "1100",
            "--height",
            "800",
            address.toStdString()};
}

} // namespace

QString Browser::whatIsMissing(Kind kind) {
    const auto program = kind == Kind::chromium ? u"chromium"_s : u"firefox-esr"_s;
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        return program + u" is not installed"_s;
    }
    return QFile::exists(QStringLiteral(QUILLORY_PAGE_BUNDLE)) ? QString() : u"the chat page was built without npm"_s;
}

Browser::Browser(int pagePort, const QString &profile, const Options &options)
    : m_process((options.kind == Kind::chromium ? chromium : firefox)(pagePort, profile, options), Output::dropped) {}

} // namespace quillory::test
