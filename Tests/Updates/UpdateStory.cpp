// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updates/UpdateStory.h"

#include "RealDesktop/ChildProcess.h"

#include <QDir>

namespace quillory::test {

using namespace Qt::StringLiterals;

UpdateStory::UpdateStory() {
    const QString temporary = folder.filePath(u"tmp"_s);
    QDir().mkpath(temporary);
    qputenv("XDG_DATA_HOME", folder.filePath(u"data"_s).toUtf8());
    qputenv("TMPDIR", temporary.toUtf8());
    m_fileSystem.createDirectory(target);
    makeSignedBundle(target, 1);
    desktop.process.information[u"CFBundleShortVersionString"_s] = u"1"_s;
    desktop.process.variables[u"QUILLORY_UPDATE_FEED"_s] = url({}).toString();
}

UpdateStory::~UpdateStory() {
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("TMPDIR");
}

void UpdateStory::answer(LoopbackConnection &connection) {
    const QByteArray path = connection.readRequest().split(' ').value(1);
    const auto found = answers.find(path);
    const bool isEndless = path == "/endless";
    connection.send(isEndless ? "HTTP/1.1 200 OK\r\n\r\n"
                              : (found == answers.end() ? answerWith("404 Not Found", "<html>") : found->second));
    while (isEndless && connection.send(QByteArray(1 << 16, 'x'))) {
    }
}

QUrl UpdateStory::url(const QString &path) const {
    QUrl url = m_server.url();
    url.setQuery(QString());
    url.setPath(path);
    return url;
}

QByteArray UpdateStory::archiveOf(int version) const {
    const QString bundle = folder.filePath(u"new/Quillory.app"_s);
    QDir(bundle).removeRecursively();
    makeSignedBundle(bundle, version);
    ZipWriter zip;
    zip.addFolder(bundle, "Quillory.app");
    return zip.bytes();
}

bool UpdateStory::awaitAlerts(std::size_t count) {
    return desktop.mainQueue.runUntil([&] { return application().alerts.size() >= count; });
}

bool UpdateStory::awaitLog(qsizetype lines) {
    // A line is written without telling the main thread.
    return waitUntil([&] {
        desktop.advance(0);
        return desktop.log().size() >= lines;
    });
}

void UpdateStory::installFrom(const QString &path) {
    checker.install(url(path));
    EXPECT_TRUE(desktop.mainQueue.runUntil([&] { return !application().hasProgress; }));
}

QStringList UpdateStory::temporaryFiles() const {
    return QDir(folder.filePath(u"tmp"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace quillory::test
