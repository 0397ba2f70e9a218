// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace quillory {

/// Records which model's suggestion was accepted, one line each in "choices.csv", so that the user can compare the
/// models later ("quillory stats"). Main thread only.
class ChoiceStats {
  public:
    /// Makes the folder of the file under the program's home.
    explicit ChoiceStats(const QString &homeDirectory);

    struct Competitor {
        QString model;
        /// Seconds from its request to its complete answer; absent while it was not complete.
        std::optional<double> elapsed;
    };

    [[nodiscard]] const QString &fileURL() const { return m_fileURL; }
    /// The file "Library/Application Support/Quillory/choices.csv" under the program's home.
    [[nodiscard]] static QString fileURL(const QString &homeDirectory);
    /// Appends a line with the winner, its elapsed seconds and the others in the order of their streams. Never fails:
    /// what cannot be written is lost.
    void record(const QString &chosenModel, std::optional<double> chosenElapsed,
                const QList<Competitor> &competitors) const;

  private:
    QString m_fileURL;
};

} // namespace quillory
