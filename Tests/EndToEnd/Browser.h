// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>

namespace quillory::test {

/// A real Chromium with a profile of its own, for which the chat's host names stand on the page's port.
class Browser {
  public:
    struct Options {
        QString address = QStringLiteral("https://web.whatsapp.com/");
        /// A window with tabs and an address bar, instead of one that holds the page alone.
        bool wholeWindow = false;
        /// Whether the tree is built from the start, or only once somebody asks for it, as users have it.
        bool forceAccessibility = true;
    };

    /// Whether there is a browser to test with; if not, why. In CI there must be one.
    [[nodiscard]] static QString whatIsMissing();

    Browser(int pagePort, const QString &profile, const Options &options);

    /// Stops the browser so that it answers nobody, and lets it go on.
    void freeze() const;
    void thaw() const;

  private:
    ChildProcess m_process;
};

} // namespace quillory::test
