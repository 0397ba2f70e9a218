// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Process.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace quillory {

/// What the maker announces, as it came from the network.
struct UpdateFeed {
    QString version;
    QUrl archive;
    QString notes;
};

/// The feed's address: on the host that the bundle names, or on the server in QUILLORY_UPDATE_FEED. Throws RewriteError
/// when that is not safe.
[[nodiscard]] QUrl feedURL(const platform::Process &process);
/// Reads the feed's JSON. Throws RewriteError.
[[nodiscard]] UpdateFeed updateFeedFromJSON(const QByteArray &json);

} // namespace quillory
