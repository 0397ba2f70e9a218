// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EndToEnd/Assistant.h"
#include "EndToEnd/Browser.h"
#include "EndToEnd/ChatPage.h"
#include "EndToEnd/Keyboard.h"
#include "EndToEnd/ModelService.h"
#include "SimulatedDesktop/Printing.h"

#include <gmock/gmock.h>

#include <optional>

namespace quillory::test {

/// A user at a web chat in one of the browsers, while the program runs.
class ChatStory : public testing::TestWithParam<Browser::Kind> {
  protected:
    using Manner = ModelService::Manner;

    void SetUp() override;
    void TearDown() override;

    void startAssistant() { m_assistant.emplace(m_model.address(), m_settings); }
    void startBrowser(const Browser::Options &options);
    [[nodiscard]] Browser::Options at(const QString &query) const { return {.kind = GetParam(), .query = query}; }
    /// Returns once the box has the focus and the program follows it.
    void openChat(const QString &query = {});
    /// Clicks into the page's box until it has the focus.
    bool clickBox();
    /// Opens another chat with a click on the list. The box keeps the focus.
    [[nodiscard]] bool clickChat(const QString &chat) const;

    [[nodiscard]] static bool logged(const QString &text, int times = 1);
    [[nodiscard]] static bool panelIsUp();
    [[nodiscard]] static bool panelGoes() {
        return waitUntil([] { return !panelIsUp(); });
    }
    /// Whether a finished rewrite of the draft is on its card. A slow machine may pause long enough in the typing for
    /// the program to ask about a part of it first.
    [[nodiscard]] bool rewriteIsReady(const QString &draft) const;
    [[nodiscard]] bool boxHolds(const QString &text) const;
    /// The transcript that the page's own texts give: without noise, marked by the side each text is on.
    [[nodiscard]] std::string transcriptOfPage() const;
    [[nodiscard]] bool keyReached(const QString &key) const { return m_page.state().keys.contains(key); }
    /// Expects that nothing was sent and that the browser and its box kept the focus. Firefox reports a loss and a
    /// return for each key that the cards take.
    void expectUntouched(int keysTaken = 1) const;

    Assistant::Settings m_settings;
    ModelService m_model;
    ChatPage m_page{Browser::takesHttps(GetParam())};
    std::optional<Assistant> m_assistant;
    std::optional<Browser> m_browser;
    int m_blursBefore = 0;
};

inline const auto everyBrowser = testing::Values(Browser::Kind::chromium, Browser::Kind::firefox);
/// For stories that do not depend on the browser, or that are about Chromium.
inline const auto chromiumAlone = testing::Values(Browser::Kind::chromium);

} // namespace quillory::test
