// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace platform::desktop {

/// The name that a desktop entry gives its application, in the language of a locale such as "pt_BR" where it can;
/// absent when it is no application's entry.
[[nodiscard]] std::optional<QString> nameInDesktopEntry(const QByteArray &entry, const QString &locale);

/// The folders of the desktop entries of installed applications, the most important first.
[[nodiscard]] QStringList entryFolders();
/// The name of the application that has the first of these desktop ids for which there is an entry in one of the
/// folders.
[[nodiscard]] std::optional<QString> nameInFolders(const QStringList &ids, const QStringList &folders);

} // namespace platform::desktop
