// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/BrowserSettings.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

namespace quillory::test::browserSettings {

namespace {
constexpr char firefoxSettings[] = R"(
user_pref("network.dns.forceResolve", "127.0.0.1");
user_pref("network.stricttransportsecurity.preloadlist", false);
user_pref("dom.security.https_first", false);
user_pref("network.captive-portal-service.enabled", false);
user_pref("network.connectivity-service.enabled", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.preonboarding.enabled", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("termsofuse.bypassNotification", true);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("datareporting.policy.firstRunURL", "");
user_pref("toolkit.telemetry.reportingpolicy.firstRun", false);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("browser.newtab.preload", false);
user_pref("browser.pagethumbnails.capturing_disabled", true);
user_pref("extensions.update.enabled", false);
user_pref("app.update.enabled", false);
)";
} // namespace

std::vector<std::string> chromiumSwitches() {
    return {"--no-sandbox", "--test-type", "--disable-gpu", "--disable-quic", "--disable-dev-shm-usage",
            "--no-first-run", "--no-default-browser-check", "--disable-background-networking",
            "--disable-component-update", "--disable-sync",
            // No question for the password of a key ring.
            "--password-store=basic", "--log-level=3", "--lang=en-US"};
}

void makeFirefoxProfile(const QString &folder) {
    QDir().mkpath(folder);
    QFile settings(folder + QStringLiteral("/user.js"));
    if (!settings.open(QFile::WriteOnly) || settings.write(firefoxSettings) < 0) {
        throw std::runtime_error("the browser's profile cannot be written");
    }
}

} // namespace quillory::test::browserSettings
