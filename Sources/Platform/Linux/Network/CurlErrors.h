// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <curl/curl.h>

namespace platform::desktop {

/// What went wrong, as a sentence for users.
[[nodiscard]] QString sentenceFor(CURLcode code);

} // namespace platform::desktop
