// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/Assistant.h"

#include <QFile>
#include <QProcess>

#include <stdexcept>

namespace quillory::test {

namespace {

void writeKey() {
    QProcess settings;
    settings.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    settings.start(QStringLiteral(QUILLORY_PROGRAM), {QStringLiteral("defaults"), QStringLiteral("write"),
                                                      QStringLiteral("openRouterAPIKey"), QStringLiteral("-")});
    settings.write("made-up-key\n");
    settings.closeWriteChannel();
    if (!settings.waitForFinished() || settings.exitCode() != 0) {
        throw std::runtime_error("the key could not be set");
    }
}

ChildProcess started(const QByteArray &modelService) {
    writeKey();
    qputenv("QUILLORY_MODEL_SERVICE", modelService);
    return ChildProcess({QUILLORY_PROGRAM});
}

} // namespace

Assistant::Assistant(const QByteArray &modelService) : m_process(started(modelService)) {
    if (!waitUntil([] { return timesLogged(QStringLiteral("accessibility trusted -> true")) > 0; })) {
        throw std::runtime_error("the program did not start: " + log().toStdString());
    }
}

QString Assistant::log() {
    QFile file(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/quillory/Library/Logs/Quillory.log"));
    return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

int Assistant::timesLogged(const QString &text) {
    return static_cast<int>(log().count(text));
}

} // namespace quillory::test
