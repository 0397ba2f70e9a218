// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"

#include <mutex>
#include <optional>

namespace platform {

/// One value for each set of installed services: made on first use, and anew once others are installed, which only
/// tests do. Safe to use from any thread.
template <typename T> class PerInstallation {
  public:
    /// The value for the current services. What an earlier installation got is gone then.
    template <typename Make> T &get(Make make) {
        const std::scoped_lock lock(m_mutex);
        if (!m_value || m_generation != generation()) {
            m_generation = generation();
            m_value.emplace(make());
        }
        return *m_value;
    }

  private:
    std::mutex m_mutex;
    std::uint64_t m_generation = 0;
    std::optional<T> m_value;
};

} // namespace platform
