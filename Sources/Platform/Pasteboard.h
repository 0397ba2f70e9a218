// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace platform {

/// One item of the general pasteboard: its data by type, in the order in which the types were offered.
struct PasteboardItem {
    std::vector<std::pair<QString, QByteArray>> representations;
    friend bool operator==(const PasteboardItem &, const PasteboardItem &) = default;
};

using PasteboardItems = std::vector<PasteboardItem>;

/// The desktop's general pasteboard (clipboard). Main thread only.
class Pasteboard {
  public:
    virtual ~Pasteboard() = default;
    /// Reads every item with all its types, without waiting: the answer comes later on the main thread, also when the
    /// owner hangs (a type that it does not deliver in time is left out). Empty when there is nothing; absent when
    /// there is something of which nothing could be read, so that overwriting it would lose it.
    virtual void copyItems(std::function<void(std::optional<PasteboardItems>)> done) = 0;
    /// Reads the plain string that a paste would give, in the same way; absent when there is none.
    virtual void copyString(std::function<void(std::optional<QString>)> done) = 0;
    /// Empties the pasteboard.
    virtual void clearContents() = 0;
    /// Puts a plain string on the emptied pasteboard, marked so that clipboard histories leave it out.
    virtual void setString(const QString &text) = 0;
    /// Puts items on the emptied pasteboard, with all their types.
    virtual void writeObjects(const PasteboardItems &items) = 0;
    /// A number that changes whenever anyone, this program included, changes the content.
    [[nodiscard]] virtual qint64 changeCount() = 0;
    /// A number that grows whenever another program fetches what this one put there.
    [[nodiscard]] virtual qint64 fetchCount() = 0;
};

} // namespace platform
