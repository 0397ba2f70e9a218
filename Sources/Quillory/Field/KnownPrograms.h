// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace quillory {

/// What a program is, as far as Quillory treats it differently.
enum class ProgramKind {
    firefox,
    /// Any other web browser.
    browser,
    /// Shows the chat service and nothing else.
    chat,
    other,
};

/// Tells programs by how their bundle identifiers begin. Which running program has which identifier is in
/// applications.conf.
[[nodiscard]] ProgramKind programKind(const QString &bundleIdentifier);

/// Whether a program is a web browser, Firefox included.
[[nodiscard]] inline bool isBrowser(const QString &bundleIdentifier) {
    const ProgramKind kind = programKind(bundleIdentifier);
    return kind == ProgramKind::browser || kind == ProgramKind::firefox;
}

} // namespace quillory
