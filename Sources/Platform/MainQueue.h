// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace platform {

/// A wall-clock instant in seconds since an arbitrary reference; intervals are plain differences.
using Instant = double;
/// An instant before all others.
inline constexpr Instant distantPast = std::numeric_limits<double>::lowest();

/// A registration that ends when this is destroyed.
class Registration {
  public:
    Registration() = default;
    /// end: called when this is destroyed.
    explicit Registration(std::function<void()> end) : m_end(std::move(end)) {}
    virtual ~Registration() {
        if (m_end) {
            m_end();
        }
    }
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

  private:
    std::function<void()> m_end;
};
using RegistrationHandle = std::unique_ptr<Registration>;

/// The main thread's queue and the program's clock.
class MainQueue {
  public:
    virtual ~MainQueue() = default;
    /// Runs the work on the main thread after what is already queued. From any thread; each thread's posts stay in
    /// order. Work that is still queued when the program ends is dropped.
    virtual void post(std::function<void()> work) = 0;
    /// The same after a delay.
    virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> work) = 0;
    /// Runs the work again and again on the main thread, also while menus or modal windows are open, until the handle
    /// is destroyed. Beats that were missed are not made up for. Main thread only.
    [[nodiscard]] virtual RegistrationHandle repeat(std::chrono::milliseconds interval, std::function<void()> work) = 0;
    /// The present instant. From any thread.
    [[nodiscard]] virtual Instant now() const = 0;
};

} // namespace platform
