// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Records/ChoiceStats.h"

#include "Quillory/Records/AppendLine.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/Text.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace quillory {

namespace {
QString secondsText(std::optional<double> seconds) {
    return seconds ? text::fixed(*seconds, 2) : QString();
}
} // namespace

QString ChoiceStats::fileURL(const QString &homeDirectory) {
    return homeDirectory + QStringLiteral("/Library/Application Support/Quillory/choices.csv");
}

ChoiceStats::ChoiceStats(const QString &homeDirectory) : m_fileURL(fileURL(homeDirectory)) {
    QDir().mkpath(QFileInfo(m_fileURL).path());
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
