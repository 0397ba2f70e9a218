// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <optional>

namespace platform::desktop {

/// The lines "program = bundle.identifier" of a text; '#' begins a comment line.
struct ApplicationLines {
    QHash<QString, QString> identifiers;
    /// The numbers of the lines, from 1, that are neither entry nor comment.
    QList<int> badLines;
};
[[nodiscard]] ApplicationLines parseApplicationLines(QByteArrayView text);

/// Says by which bundle identifier a program is known, from the lines that come with this program and, before them,
/// the user's own. Immutable.
class ApplicationCatalogue {
  public:
    /// Reads the user's file; bad lines in it are named on standard error and left out.
    explicit ApplicationCatalogue(const QString &userFile = folders::configuration() +
                                                            QStringLiteral("/applications.conf"));

    /// The identifier for the first of a program's names that is known, the user's lines before all others.
    [[nodiscard]] std::optional<QString> bundleIdentifier(const QStringList &names) const;

  private:
    QHash<QString, QString> m_userLines;
    QHash<QString, QString> m_builtInLines;
};

/// The text of the applications.conf that this program was built with.
[[nodiscard]] QByteArrayView builtInApplications();

} // namespace platform::desktop
