// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>

#include <ostream>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// A real browser with a profile of its own, in which the chat's host names lead to the page's port.
class Browser {
  public:
    enum class Kind { chromium, firefox };
    struct Options {
        Kind kind = Kind::chromium;
        QString host = u"web.whatsapp.com"_s;
        /// What follows the page's address ("?box=textarea").
        QString query = QString();
        /// A window with tabs and an address bar, instead of one that holds the page alone. Firefox has no other.
        bool wholeWindow = false;
        /// Have the browser build its tree whatever the desktop says. Otherwise it does as for users: Firefox builds
        /// it if accessibility was on at its start, Chromium then waits until somebody asks for it.
        bool forceAccessibility = true;
    };

    /// Why this browser cannot be tested; empty if it can. In CI it must be there.
    [[nodiscard]] static QString whatIsMissing(Kind kind);
    /// Chromium insists on HTTPS for this host, but can be told to accept any certificate. Firefox takes no such
    /// certificate, but can be told not to insist.
    [[nodiscard]] static bool takesHttps(Kind kind) { return kind == Kind::chromium; }

    Browser(int pagePort, const QString &profile, const Options &options);

  private:
    ChildProcess m_process;
};

/// The browser's name in the output of a test.
inline void PrintTo(Browser::Kind kind, std::ostream *out) {
    *out << (kind == Browser::Kind::chromium ? "Chromium" : "Firefox");
}

} // namespace quillory::test
