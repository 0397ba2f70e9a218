// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/UserDefaults.h"

#include <functional>
#include <vector>

namespace quillory::ui {

/// Ties the controls of the settings window to the store: what the user changes is stored at once, and what is stored
/// by someone else (the menu, another process) is shown when asked to refresh.
class SettingsBinding {
  public:
    explicit SettingsBinding(platform::UserDefaults &store) : m_store(store) {}

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
    platform::UserDefaults &m_store;
    std::vector<std::function<void()>> m_shows;
};

} // namespace quillory::ui
