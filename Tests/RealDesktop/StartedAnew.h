// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quillory::test {

/// Runs the current test once more, in a process of its own on this desktop, for what an application reads only at its
/// start. Returns its exit status.
int startAnew();
/// Whether startAnew() started this process.
[[nodiscard]] bool isStartedAnew();

} // namespace quillory::test
