// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ModelService/Speller.h"

#include "ModelService/Words.h"

#include <QFile>

#include <hunspell/hunspell.hxx>

#include <algorithm>
#include <stdexcept>

namespace quillory::demo {

namespace {

constexpr qsizetype plausibleScore = 20;

/// The length of the stretch in which two words differ. Two letters that changed places count as one.
qsizetype difference(const QString &a, const QString &b) {
    const qsizetype shorter = std::min(a.size(), b.size());
    const auto prefix = std::mismatch(a.begin(), a.begin() + shorter, b.begin()).first - a.begin();
    const auto suffix = std::mismatch(a.rbegin(), a.rend() - prefix, b.rbegin(), b.rend() - prefix).first - a.rbegin();
    const qsizetype differing = std::max(a.size(), b.size()) - prefix - suffix;
    return differing == 2 && std::is_permutation(a.begin(), a.end(), b.begin(), b.end()) ? 1 : differing;
}

/// Lower is better; above the plausible score the candidate is no correction.
qsizetype score(const QString &word, const QString &candidate) {
    if (candidate.compare(word, Qt::CaseInsensitive) == 0) {
        return 5; // "friday"
    }
    const qsizetype differing = difference(word, candidate);
    const bool isCommon = words::isCommon(candidate);
    const bool isTooFar = differing > (word.size() >= 7 ? 3 : word.size() >= 5 ? 2 : 1);
    if (isTooFar || (word.size() <= 5 && !isCommon) || candidate.contains(u' ') || candidate.contains(u'-')) {
        return plausibleScore + 1;
    }
    // A letter is forgotten more often than added, and the first one is seldom wrong.
    return differing * 6 + (candidate.size() < word.size() ? 1 : 0) + (word[0] == candidate[0] ? 0 : 5) -
           (isCommon ? 6 : 0);
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
    qsizetype bestScore = plausibleScore + 1;
    for (const std::string &suggestion : m_dictionary->suggest(word.toStdString())) {
        const QString candidate = QString::fromStdString(suggestion);
        if (const qsizetype candidateScore = score(word, candidate); candidateScore < bestScore) {
            best = candidate;
            bestScore = candidateScore;
        }
    }
    return best;
}

} // namespace quillory::demo
