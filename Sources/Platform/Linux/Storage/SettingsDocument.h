// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/UserDefaults.h"

/// The written form of settings: one JSON object, a member for each key. Strings, booleans and integers stand for
/// themselves, data is {"data": "<base64>"}.
namespace platform::desktop::settingsDocument {

using Values = std::map<QString, DefaultsValue>;
/// Keys to set, or to remove where there is no value.
using Changes = std::map<QString, std::optional<DefaultsValue>>;

/// The values of a document, without members of any other form; absent when it is not such a document at all.
[[nodiscard]] std::optional<Values> values(const QByteArray &json);
/// The document with these changes and everything else as it was, including members that values() leaves out. A value
/// that is replaced by one of another type is kept as "<key>.replaced". The document must be one that values() can
/// read, or empty.
[[nodiscard]] QByteArray merged(const QByteArray &json, const Changes &changes);

} // namespace platform::desktop::settingsDocument
