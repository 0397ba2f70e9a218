// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"
#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Tasks.h"

#include <QString>

namespace quillory {

/// Asks the model service once, on the calling thread. What came of it, for the user: begins with "✓" or "✗".
/// A password store that is locked may ask to be unlocked once more.
[[nodiscard]] QString triedConnection(const AppSettings &settings, const OpenRouterClient &client,
                                      const std::stop_token &stop);

/// Asks the model service for one small rewrite, to see whether it answers. Main thread only.
class ConnectionCheck {
  public:
    /// changed: called on the main thread whenever a test begins or ends. The others outlive this.
    ConnectionCheck(const AppSettings &settings, const OpenRouterClient &client, platform::MainQueue &mainQueue,
                    std::function<void()> changed);

    /// Starts a test; nothing while one is under way.
    void run();
    [[nodiscard]] bool isTesting() const { return m_isTesting; }
    /// What came of the last test, for the user: begins with "✓" or "✗". Absent before the first and during one.
    [[nodiscard]] const std::optional<QString> &result() const { return m_result; }

  private:
    void finish(const QString &result);

    const AppSettings &m_settings;
    const OpenRouterClient &m_client;
    platform::MainQueue &m_mainQueue;
    std::function<void()> m_changed;
    bool m_isTesting = false;
    std::optional<QString> m_result;
    platform::LifeToken m_life;
    Tasks m_tasks;
};

} // namespace quillory
