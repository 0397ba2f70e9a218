// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Monitor/TypingMonitor.h"

#include "Platform/Platform.h"

namespace quillory {

namespace {
constexpr std::chrono::milliseconds pollInterval{100};
}

TypingMonitor::TypingMonitor(MakeSuggestionHost makeHost)
    : m_settings(AppSettings::shared()), m_stats(platform::current().process.homeDirectory()),
      m_panel(std::move(makeHost)) {}

TypingMonitor::~TypingMonitor() = default;

void TypingMonitor::start() {
    connectPanel();
    m_pollTimer = platform::current().mainQueue.repeat(pollInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->tick();
        }
    });
}

} // namespace quillory
