// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>

namespace quillory::demo {

/// Set when the user wants the demo to end (Ctrl+C).
extern std::atomic<bool> stopRequested;

/// On the user's own desktop: explains what to try, and ends with the chat window. Returns the exit status.
int showOnDesktop();
/// On a virtual display: types, accepts, takes pictures and checks the results. Returns the exit status.
int runUnseen(const QString &picturesFolder);

} // namespace quillory::demo
