// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

[[nodiscard]] const CommandSyntax &inspectSyntax();

/// Shows what Quillory sees of the desktop and what it would send: the focused element, whether it is a chat and why,
/// the conversation, the request without the key. With "--wait SECONDS" it waits up to that long for a message box to
/// get the focus. Returns the exit status: success when a message box was seen.
[[nodiscard]] int runInspectCommand(const QStringList &arguments, const CommandServices &services,
                                    const CommandStreams &streams);

} // namespace quillory
