// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandArguments.h"

namespace quillory {

/// "quillory inspect [--json] [--wait SECONDS]": shows what Quillory sees of the desktop and what it would send: the
/// focused element, whether it is a chat and why, the conversation, the request without the key. Waits up to that long
/// for a message box to get the focus, and succeeds when one was seen.
[[nodiscard]] const Command &inspectCommand();

} // namespace quillory
