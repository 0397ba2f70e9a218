// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <utility>

namespace platform {

/// Tells work that runs later whether the object that it was meant for still exists: an object has one as a member, and
/// what it hands to a queue is wrapped by whileAlive(). What was wrapped runs on the thread that destroys the object;
/// wrapping is also for threads that the object waits for before it goes.
class LifeToken {
  public:
    LifeToken() = default;
    ~LifeToken() = default;
    LifeToken(const LifeToken &) = delete;
    LifeToken &operator=(const LifeToken &) = delete;

    /// The same function, except that it does nothing once this token is gone.
    template <class Function> [[nodiscard]] auto whileAlive(Function function) const {
        return [life = std::weak_ptr(m_life), function = std::move(function)](auto &&...arguments) {
            if (!life.expired()) {
                function(std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

  private:
    std::shared_ptr<const bool> m_life = std::make_shared<const bool>(true);
};

} // namespace platform
