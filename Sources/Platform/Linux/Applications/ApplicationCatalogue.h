// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <optional>

namespace platform::desktop {

/// The lines "program = bundle.identifier" of a text. A line that begins with '#' is a comment.
struct ApplicationLines {
    QHash<QString, QString> identifiers;
    /// The numbers, from 1, of the lines that are neither entry nor comment.
    QList<int> badLines;
};
[[nodiscard]] ApplicationLines parseApplicationLines(QByteArrayView text);

/// Knows the bundle identifiers of programs, from the user's own lines and after them the ones built in. Immutable.
class ApplicationCatalogue {
  public:
    /// Reads the user's file; bad lines are reported on standard error and left out.
    explicit ApplicationCatalogue(const QString &userFile = folders::configuration() +
                                                            QStringLiteral("/applications.conf"));

    /// The identifier for the first of a program's names that is known; the user's lines come first.
    [[nodiscard]] std::optional<QString> bundleIdentifier(const QStringList &names) const;

  private:
    QHash<QString, QString> m_userLines;
    QHash<QString, QString> m_builtInLines;
};

/// The text of the applications.conf that this program was built with.
[[nodiscard]] QByteArrayView builtInApplications();

} // namespace platform::desktop
