// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace platform::desktop {

/// What a desktop entry says of its application.
struct DesktopEntry {
    /// In the user's language where the entry has it.
    QString name;
    /// The program it starts, as a name or a path.
    QString program;
    friend bool operator==(const DesktopEntry &, const DesktopEntry &) = default;
};

/// Reads an entry; absent when it is none of an application. locale: such as "pt_BR".
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(const QByteArray &text, const QString &locale);

/// The names of the applications that are installed, by their desktop ids and by the programs that they start. The
/// entries are read on first use, and again after a folder of them changed.
class DesktopEntries {
  public:
    /// folders: the most important first; by default those of the XDG data folders.
    explicit DesktopEntries(QStringList folders = standardFolders());

    /// The name of the application that a program is, by any of its names; absent when none has an entry.
    [[nodiscard]] std::optional<QString> displayName(const QStringList &programNames);

  private:
    [[nodiscard]] static QStringList standardFolders();
    void refresh();

    QStringList m_folders;
    QList<qint64> m_folderTimes;
    QHash<QString, QString> m_names;
};

} // namespace platform::desktop
