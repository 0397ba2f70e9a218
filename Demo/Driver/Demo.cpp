// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Driver/Demo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUuid>

#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>

namespace quillory::demo {

namespace {

QString program(const char *name) {
    return QCoreApplication::applicationDirPath() + u'/' + QString::fromLatin1(name);
}

QByteArray contents(const QString &path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// Runs a program to its end and returns what it printed.
QByteArray outputOf(const QString &path, const QStringList &arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(path, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        throw std::runtime_error("could not run " + path.toStdString() + " " + arguments.join(u' ').toStdString());
    }
    return process.readAllStandardOutput();
}

QByteArray frequentQuestions() {
    const auto entry = [](const char *question, const char *answer) {
        return QJsonObject{{QStringLiteral("id"), QUuid::createUuid().toString(QUuid::WithoutBraces)},
                           {QStringLiteral("question"), QString::fromUtf8(question)},
                           {QStringLiteral("answer"), QString::fromUtf8(answer)}};
    };
    const QJsonArray entries{
        entry("Do you deliver, and where?",
              "Yes, we deliver all over Bahrain, every day from 10 to 6. Above 10 dinars delivery is free."),
        entry("How early must a birthday cake be ordered?",
              "Please order birthday cakes two days before. Small cakes are ready on the same day."),
        entry("What are your opening hours? Are you open on Friday?",
              "We are open every day from 7 in the morning to 9 in the evening, on Fridays from 2 in the afternoon."),
        entry("How can I pay?", "You can pay in cash, by card or with BenefitPay."),
    };
    return QJsonDocument(entries).toJson(QJsonDocument::Compact);
}

QStringList write(const QString &key, const QString &value) {
    return {QStringLiteral("defaults"), QStringLiteral("write"), key, value};
}

} // namespace

Demo::Demo(Pace pace, bool draftsReplies) {
    prepareSettings(draftsReplies);
    startService(pace);
    qputenv("QUILLORY_MODEL_SERVICE", serviceAddress());
    m_program = test::ChildProcess({program("quillory").toStdString()});
    const auto hasStarted = [this] { return log().contains(QStringLiteral("launched, ")); };
    if (!test::waitUntil([&] { return hasStarted() || !m_program.isRunning(); }) || !hasStarted()) {
        throw std::runtime_error("the program did not start; should Quillory be running here already, quit it first");
    }
    m_chat = test::ChildProcess({program("quillory-demo-chat").toStdString(), "--report",
                                 m_folder.filePath(QStringLiteral("chat.json")).toStdString()});
}

Demo::~Demo() {
    m_chat.end();
    m_program.end();
    m_service.terminate();
    if (!m_service.waitForFinished(2000)) {
        m_service.kill();
        m_service.waitForFinished(2000);
    }
}

void Demo::prepareSettings(bool draftsReplies) const {
    qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", m_folder.filePath(QStringLiteral("data")).toUtf8());
    QDir(m_folder.path()).mkpath(QStringLiteral("config"));
    QDir(m_folder.path()).mkpath(QStringLiteral("data"));
    // The local service requires a key, but takes any. It is not stored: that would replace the user's own key in the
    // desktop's password store.
    qputenv("OPENROUTER_API_KEY", "demo");
    changeSetting(QStringLiteral("businessProfile"),
                  QStringLiteral("Noor Bakery in Riffa, Bahrain: cakes, bread and sweets. We sign as Noor."));
    changeSetting(QStringLiteral("assistantMode"), draftsReplies ? QStringLiteral("true") : QStringLiteral("false"));
    changeSetting(QStringLiteral("faqEntries"), QString::fromUtf8(frequentQuestions()));
}

void Demo::startService(Pace pace) {
    m_service.setStandardOutputFile(m_folder.filePath(QStringLiteral("service.log")));
    m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_service.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_service.start(program("quillory-demo-model"),
                    {QStringLiteral("--first-piece"), QString::number(pace.firstPiece),
                     QStringLiteral("--between-pieces"), QString::number(pace.betweenPieces)});
    if (!m_service.waitForStarted() || !test::waitUntil([this] { return !serviceAddress().isEmpty(); })) {
        throw std::runtime_error("the model service did not start");
    }
}

QByteArray Demo::serviceAddress() const {
    static const QRegularExpression line(QStringLiteral("listening on port (\\d+)\\n"));
    const QRegularExpressionMatch match = line.match(serviceLog());
    return match.hasMatch() ? "http://127.0.0.1:" + match.captured(1).toLatin1() : QByteArray();
}

QString Demo::field() const {
    const QByteArray report = contents(m_folder.filePath(QStringLiteral("chat.json")));
    return QJsonDocument::fromJson(report)[QStringLiteral("field")].toString();
}

QStringList Demo::sentMessages() const {
    const QByteArray report = contents(m_folder.filePath(QStringLiteral("chat.json")));
    return QJsonDocument::fromJson(report)[QStringLiteral("sent")].toVariant().toStringList();
}

QString Demo::log() const {
    return QString::fromUtf8(contents(m_folder.filePath(QStringLiteral("data/quillory/Library/Logs/Quillory.log"))));
}

QString Demo::serviceLog() const {
    return QString::fromUtf8(contents(m_folder.filePath(QStringLiteral("service.log"))));
}

void Demo::changeSetting(const QString &key, const QString &value) const {
    outputOf(program("quillory"), write(key, value));
}

QString Demo::expectedRewrite(const QString &draft) {
    return QString::fromUtf8(outputOf(program("quillory-demo-model"), {QStringLiteral("--rewrite"), draft})).trimmed();
}

} // namespace quillory::demo
