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

/// The desktop entries of the applications that are installed.
class DesktopEntries {
  public:
    /// folders: the most important first; by default those of the XDG data folders.
    explicit DesktopEntries(QStringList folders = standardFolders()) : m_folders(std::move(folders)) {}

    /// The name of the application that has the first of these desktop ids for which there is an entry.
    [[nodiscard]] std::optional<QString> displayName(const QStringList &ids) const;

  private:
    [[nodiscard]] static QStringList standardFolders();

    QStringList m_folders;
};

} // namespace platform::desktop
