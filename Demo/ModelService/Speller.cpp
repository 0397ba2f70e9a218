// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Speller.h"

#include "ModelService/Words.h"

#include <QFile>

#include <hunspell/hunspell.hxx>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace quillory::demo {

namespace {

constexpr int plausibleScore = 20;

/// Letters to add, drop, replace or swap with their neighbour to get from one word to the other.
int editDistance(const QString &a, const QString &b) {
    const auto columns = static_cast<std::size_t>(b.size()) + 1;
    std::vector<std::vector<int>> rows(static_cast<std::size_t>(a.size()) + 1, std::vector<int>(columns));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = static_cast<int>(i + j);
                continue;
            }
            const auto at = [](const QString &text, std::size_t k) { return text[static_cast<qsizetype>(k)]; };
            const int replace = rows[i - 1][j - 1] + (at(a, i - 1) == at(b, j - 1) ? 0 : 1);
            rows[i][j] = std::min({replace, rows[i - 1][j] + 1, rows[i][j - 1] + 1});
            if (i > 1 && j > 1 && at(a, i - 1) == at(b, j - 2) && at(a, i - 2) == at(b, j - 1)) {
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
            }
        }
    }
    return rows.back().back();
}

/// People leave out the second of two equal letters more often than they write one for another.
bool differsByDoubling(const QString &word, const QString &candidate) {
    const auto withoutDoubles = [](const QString &text) {
        QString result;
        std::copy_if(text.begin(), text.end(), std::back_inserter(result),
                     [&](QChar c) { return result.isEmpty() || result.back() != c; });
        return result;
    };
    return withoutDoubles(word) == withoutDoubles(candidate);
}

/// Lower is better; above the plausible score the candidate is no correction.
int score(const QString &word, const QString &candidate) {
    const int distance = editDistance(word, candidate);
    const bool common = words::isCommon(candidate);
    const bool tooFar = distance > (word.size() >= 7 ? 2 : 1);
    if (tooFar || (word.size() <= 5 && !common)) {
        return plausibleScore + 1;
    }
    return distance * 10 + (word[0] == candidate[0] ? 0 : 5) - (common ? 6 : 0) -
           (differsByDoubling(word, candidate) ? 4 : 0);
}

} // namespace

Speller::Speller() {
    const std::string base = "/usr/share/hunspell/en_US";
    if (!QFile::exists(QString::fromStdString(base + ".dic"))) {
        throw std::runtime_error("no American English dictionary (package hunspell-en-us)");
    }
    m_dictionary = std::make_unique<Hunspell>((base + ".aff").c_str(), (base + ".dic").c_str());
}

Speller::~Speller() = default;

bool Speller::knows(const QString &word) const {
    return m_dictionary->spell(word.toStdString());
}

QString Speller::corrected(const QString &word) const {
    if (word.size() < 3 || knows(word)) {
        return word;
    }
    QString best = word;
    int bestScore = plausibleScore + 1;
    for (const std::string &suggestion : m_dictionary->suggest(word.toStdString())) {
        QString candidate = QString::fromStdString(suggestion);
        if (candidate.compare(word, Qt::CaseInsensitive) == 0) {
            return candidate;
        }
        const int candidateScore = score(word, candidate);
        if (!candidate.contains(u' ') && !candidate.contains(u'-') && candidateScore < bestScore) {
            best = candidate;
            bestScore = candidateScore;
        }
    }
    return best;
}

} // namespace quillory::demo
