// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/KnownPrograms.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillory {

namespace {
constexpr std::array knownPrograms{
    std::pair(QLatin1StringView("com.apple.Safari"), ProgramKind::browser),
    std::pair(QLatin1StringView("com.google.Chrome"), ProgramKind::browser),
    std::pair(QLatin1StringView("org.chromium"), ProgramKind::browser),
    std::pair(QLatin1StringView("com.microsoft.edgemac"), ProgramKind::browser),
    std::pair(QLatin1StringView("com.brave.Browser"), ProgramKind::browser),
    std::pair(QLatin1StringView("company.thebrowser.Browser"), ProgramKind::browser),
    std::pair(QLatin1StringView("org.mozilla.firefox"), ProgramKind::firefox),
    std::pair(QLatin1StringView("com.vivaldi.Vivaldi"), ProgramKind::browser),
    std::pair(QLatin1StringView("com.operasoftware.Opera"), ProgramKind::browser),
    std::pair(QLatin1StringView("net.whatsapp"), ProgramKind::chat),
};
} // namespace

ProgramKind programKind(const QString &bundleIdentifier) {
    const auto found = std::ranges::find_if(
        knownPrograms, [&](const auto &program) { return bundleIdentifier.startsWith(program.first); });
    return found == knownPrograms.end() ? ProgramKind::other : found->second;
}

} // namespace quillory
