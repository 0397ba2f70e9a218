// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>

#include <ostream>

namespace quillory::test {

using namespace Qt::StringLiterals;

/// A real browser with a profile of its own, for which the chat's host names stand on the page's port.
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
        /// Whether the tree is built whatever the desktop says. Else it is as users have it: Firefox builds it when
        /// accessibility was on at its start, Chromium once somebody asks for it then.
        bool forceAccessibility = true;
    };

    /// Whether there is such a browser to test with; if not, why. In CI there must be one.
    [[nodiscard]] static QString whatIsMissing(Kind kind);
    /// Chromium takes the page over HTTPS alone, whoever signed it; Firefox takes it without, but no strange signature.
    [[nodiscard]] static bool takesHttps(Kind kind) { return kind == Kind::chromium; }

    Browser(int pagePort, const QString &profile, const Options &options);

    /// Stops the browser so that it answers nobody, and lets it go on.
    void freeze() const;
    void thaw() const;

  private:
    ChildProcess m_process;
};

/// How a test's output names the browser.
inline void PrintTo(Browser::Kind kind, std::ostream *out) {
    *out << (kind == Browser::Kind::chromium ? "Chromium" : "Firefox");
}

} // namespace quillory::test
