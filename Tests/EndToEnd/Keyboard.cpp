// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/Keyboard.h"

#include "RealDesktop/ChildProcess.h"

#include <QProcess>

namespace quillory::test::keyboard {

void type(const QString &text) {
    run({"xdotool", "type", "--delay", "15", "--", text.toStdString()});
}

void tap(const char *key) {
    run({"xdotool", "key", key});
}

void click(QPoint place) {
    run({"xdotool", "mousemove", std::to_string(place.x()), std::to_string(place.y()), "click", "1"});
}

void setLayout(const char *layout) {
    run({"setxkbmap", "-layout", layout});
}

void copy(const QByteArray &content, const char *type) {
    QProcess copier;
    // It stays in the background as the owner: without the output closed, waiting for it would never end.
    copier.setStandardOutputFile(QProcess::nullDevice());
    copier.setStandardErrorFile(QProcess::nullDevice());
    copier.start(u"xclip"_qs, {u"-selection"_qs, u"clipboard"_qs, u"-t"_qs, QString::fromLatin1(type)});
    copier.write(content);
    copier.closeWriteChannel();
    copier.waitForFinished();
}

QByteArray clipboard(const char *type) {
    QProcess reader;
    reader.start(u"xclip"_qs, {u"-selection"_qs, u"clipboard"_qs, u"-t"_qs, QString::fromLatin1(type), u"-o"_qs});
    reader.waitForFinished();
    return reader.readAllStandardOutput();
}

} // namespace quillory::test::keyboard
