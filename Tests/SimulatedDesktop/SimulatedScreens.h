// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Screens.h"

namespace quillory::test {

/// Displays as a test puts them together: one of 1440 x 900 points with a bar of 25 at its top, unless told otherwise.
class SimulatedScreens final : public platform::Screens {
  public:
    std::vector<platform::Screen> attached{{{0, 0, 1440, 900}, {0, 0, 1440, 875}}};
    /// Which of them has the keyboard focus; none of them: the primary one.
    std::size_t focused = 0;

    [[nodiscard]] std::vector<platform::Screen> screens() override { return attached; }
    [[nodiscard]] std::optional<platform::Screen> mainScreen() override {
        if (attached.empty()) {
            return std::nullopt;
        }
        return focused < attached.size() ? attached.at(focused) : attached.front();
    }
};

} // namespace quillory::test
