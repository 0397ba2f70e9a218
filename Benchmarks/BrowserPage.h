// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "RealDesktop/ChildProcess.h"

#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace quillory::bench {

/// A chat page in a real browser: bubbles, each with a time, and a message box that has the focus.
class BrowserPage {
  public:
    enum class Browser { chromium, firefox };
    struct Chat {
        int bubbles = 245;
        /// How often another message comes; never by default.
        int millisecondsBetweenMessages = 0;
    };
    BrowserPage(Browser browser, Chat chat);

    /// Waits until the page's message box has the focus. Throws std::runtime_error if it never gets it.
    [[nodiscard]] platform::AXUIElement waitForBox(platform::Accessibility &accessibility);

  private:
    QTemporaryDir m_folder;
    test::ChildProcess m_browser;
};

/// The innermost page that contains the element.
[[nodiscard]] std::optional<platform::AXUIElement> pageAround(const platform::AXUIElement &element);

} // namespace quillory::bench
