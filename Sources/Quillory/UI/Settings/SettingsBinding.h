// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Model/OpenRouterClient.h"
#include "Quillory/Settings/AppSettings.h"

#include <functional>
#include <vector>

namespace platform {
class Accessibility;
class MainQueue;
class Workspace;
} // namespace platform

namespace quillory::ui {

/// What the settings window works with. All of it outlives the window.
struct SettingsServices {
    AppSettings &settings;
    const OpenRouterClient &client;
    platform::Accessibility &accessibility;
    platform::MainQueue &mainQueue;
    platform::Workspace &workspace;
};

/// Ties the controls of the settings window to the store: what the user changes is stored at once, and what is stored
/// by someone else (the menu, another process) is shown when asked to refresh.
class SettingsBinding {
  public:
    explicit SettingsBinding(const SettingsServices &services)
        : m_services(services), m_store(services.settings.store()) {}

    [[nodiscard]] const SettingsServices &services() const { return m_services; }
    [[nodiscard]] platform::UserDefaults &store() const { return m_store; }
    /// Stores a value that the user chose.
    void set(const QString &key, const platform::DefaultsValue &value) {
        m_store.set(key, value);
        refresh();
    }
    /// Shows what is stored; called once now and at every refresh. It must not call set().
    void onRefresh(std::function<void()> show) {
        show();
        m_shows.push_back(std::move(show));
    }
    void refresh() const {
        for (const auto &show : m_shows) {
            show();
        }
    }

  private:
    SettingsServices m_services;
    platform::UserDefaults &m_store;
    std::vector<std::function<void()>> m_shows;
};

} // namespace quillory::ui
