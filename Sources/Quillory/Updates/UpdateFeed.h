// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace quillory {

/// What the maker announces.
struct UpdateFeed {
    QString version;
    QUrl archive;
    QString notes;
};

/// Where the feed is: on the host that the bundle names, or at the address in QUILLORY_UPDATE_FEED with the feed's
/// path. Throws RewriteError for an address that would not be safe.
[[nodiscard]] QUrl feedURL();
/// From the feed's JSON. Throws RewriteError.
[[nodiscard]] UpdateFeed updateFeedFromJSON(const QByteArray &json);

} // namespace quillory
