// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <stop_token>

namespace platform {

/// Where a key went.
enum class KeyPlace { nowhere, passwordStore, settingsFile };

/// Takes the user's API key and keeps it where the program's settings find it.
class KeyStorage {
  public:
    virtual ~KeyStorage() = default;
    /// Replaces what was kept. The desktop's password store comes first, and may ask the user to unlock it, which can
    /// take long, until the token asks to stop; the settings file is the fallback. Any thread.
    virtual KeyPlace storeKey(const QString &key, const std::stop_token &stop) = 0;
};

} // namespace platform
