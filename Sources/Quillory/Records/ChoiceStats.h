// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace quillory {

/// A model's part in one choice.
struct ChoiceEntry {
    QString model;
    /// Seconds from its request to its complete answer; absent while it was not complete.
    std::optional<double> elapsed;
    friend bool operator==(const ChoiceEntry &, const ChoiceEntry &) = default;
};

/// One accepted suggestion.
struct ChoiceRecord {
    ChoiceEntry chosen;
    /// In the order of their streams.
    std::vector<ChoiceEntry> competitors;
    friend bool operator==(const ChoiceRecord &, const ChoiceRecord &) = default;
};

/// Records which model's suggestion was accepted, one line each in "choices.csv", so that the user can compare the
/// models later ("quillory stats"). Main thread only.
class ChoiceStats {
  public:
    /// Makes the folder of the file under the program's home.
    explicit ChoiceStats(const QString &homeDirectory);

    [[nodiscard]] const QString &fileURL() const { return m_fileURL; }
    /// The file "Library/Application Support/Quillory/choices.csv" under the program's home.
    [[nodiscard]] static QString fileURL(const QString &homeDirectory);
    /// Appends a line. Never fails: what cannot be written is lost.
    void record(const ChoiceRecord &choice) const;

  private:
    QString m_fileURL;
};

/// The record on a line (without its line break); absent if the line is damaged. Model identifiers are not escaped in
/// the file. If one contains "," or ";", the time with two decimals that must follow it shows where it ends; of several
/// possible readings, the one with the shortest winner is taken.
[[nodiscard]] std::optional<ChoiceRecord> choiceRecord(const QByteArray &line);

/// How often a model was shown and chosen, and how fast it was.
struct ModelChoices {
    /// In how many choices it took part, alone or against others.
    int shown = 0;
    int chosen = 0;
    struct Against {
        int won = 0;
        /// The other was chosen.
        int lost = 0;
    };
    std::map<QString, Against> against;
    /// The times of its complete answers, in seconds, ascending.
    std::vector<double> times;
};
using ChoiceSummary = std::map<QString, ModelChoices>;
[[nodiscard]] ChoiceSummary summary(const std::vector<ChoiceRecord> &records);

/// The smallest of the ascending values that at least this percentage of them does not exceed; absent if there are
/// none.
[[nodiscard]] std::optional<double> percentile(const std::vector<double> &ascending, int percent);

} // namespace quillory
