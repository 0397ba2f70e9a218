// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace quillory {

/// Whether a version of dotted numbers comes after another one: 1.10 comes after 1.9, but 2.0 not after 2. A component
/// that is no number counts as 0. Any thread.
[[nodiscard]] bool isNewer(const QString &version, const QString &than);

/// The highest version that has ever run for this user, so that no update leads back. It is kept in a file in the
/// program's home folder. Any thread.
class VersionHistory {
  public:
    explicit VersionHistory(const QString &homeDirectory);
    /// "0" when no version is on record.
    [[nodiscard]] QString highest() const;
    /// Records a version that runs. Does nothing when that cannot be written.
    void remember(const QString &version) const;
    /// Whether a version may take the place of a running one: it is newer, and not older than the highest.
    [[nodiscard]] bool permits(const QString &version, const QString &running) const;

  private:
    QString m_folder;
    QString m_file;
};

} // namespace quillory
