// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/Assistant.h"

#include <QFile>

#include <stdexcept>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

ChildProcess started(const QByteArray &modelService, const Assistant::Settings &settings) {
    qputenv("OPENROUTER_API_KEY", "made-up-key");
    for (const auto &[setting, value] : settings) {
        Assistant::set(setting, value);
    }
    qputenv("QUILLORY_MODEL_SERVICE", modelService);
    return ChildProcess({QUILLORY_PROGRAM});
}

QString fileInHome(const char *path) {
    QFile file(qEnvironmentVariable("XDG_DATA_HOME") + u"/quillory/Library/"_s + QLatin1StringView(path));
    return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

Assistant::Assistant(const QByteArray &modelService, const Settings &settings)
    : m_process(started(modelService, settings)) {
    if (!waitUntil([] { return timesLogged(u"accessibility trusted -> true"_s) > 0; })) {
        throw std::runtime_error("the program did not start: " + log().toStdString());
    }
}

void Assistant::set(const QString &setting, const QString &value) {
    if (run({QUILLORY_PROGRAM, "defaults", "write", setting.toStdString(), value.toStdString()}) != 0) {
        throw std::runtime_error("the setting could not be written: " + setting.toStdString());
    }
}

QString Assistant::log() {
    return fileInHome("Logs/Quillory.log");
}

int Assistant::timesLogged(const QString &text) {
    return static_cast<int>(log().count(text));
}

QStringList Assistant::choices() {
    return fileInHome("Application Support/Quillory/choices.csv").split(u'\n', Qt::SkipEmptyParts);
}

} // namespace quillory::test
