// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/ChoiceStats.h"

#include "Platform/PerInstallation.h"
#include "Quillory/AppendLine.h"
#include "Quillory/FileLog.h"

#include <QDateTime>
#include <QDir>

#include <array>
#include <charconv>

namespace quillory {

namespace {
/// As "%.2f" would, ties to even included, but with a full stop in every locale.
QString secondsText(std::optional<double> seconds) {
    if (!seconds) {
        return {};
    }
    std::array<char, 400> digits; // the largest double takes 312
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), *seconds, std::chars_format::fixed, 2);
    return QString::fromLatin1(digits.data(), end - digits.data());
}
} // namespace

ChoiceStats &ChoiceStats::shared() {
    static platform::PerInstallation<ChoiceStats> instance;
    return instance.get([] { return ChoiceStats(); });
}

ChoiceStats::ChoiceStats() {
    const QString folder =
        platform::current().process.homeDirectory() + QStringLiteral("/Library/Application Support/Quillory");
    QDir().mkpath(folder);
    m_fileURL = folder + QStringLiteral("/choices.csv");
}

void ChoiceStats::record(const QString &chosenModel, std::optional<double> chosenElapsed,
                         const QList<Competitor> &competitors) const {
    QStringList others;
    for (const Competitor &competitor : competitors) {
        others += competitor.model + u'=' + secondsText(competitor.elapsed);
    }
    const QStringList fields{QDateTime::currentDateTimeUtc().toString(Qt::ISODate), chosenModel,
                             secondsText(chosenElapsed), others.join(u';')};
    appendToFile(m_fileURL, (fields.join(u',') + u'\n').toUtf8());
    FileLog::log(QStringLiteral("choice recorded: ") + chosenModel);
}

} // namespace quillory
