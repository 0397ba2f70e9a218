// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QPoint>
#include <QProcess>

using namespace Qt::StringLiterals;

/// The user's hands and eyes: keys and clicks that come from the X server like real ones, windows, and the clipboard.
namespace quillory::test::keyboard {

inline void type(const QString &text) {
    run({"xdotool", "type", "--delay", "15", "--", text.toStdString()});
}
/// A key with its modifiers, as xdotool names it ("Tab", "ctrl+l").
inline void tap(const char *key) {
    run({"xdotool", "key", key});
}
inline void click(QPoint place) {
    run({"xdotool", "mousemove", std::to_string(place.x()), std::to_string(place.y()), "click", "1"});
}

/// Whether a window has exactly this title.
[[nodiscard]] inline bool seesWindow(const std::string &title) {
    return run({"xdotool", "search", "--onlyvisible", "--name", '^' + title + '$'}, Output::dropped) == 0;
}
/// Whether the active window has this title, be it with a browser's name behind it.
[[nodiscard]] inline bool isAtWindow(const std::string &title) {
    return run({"sh", "-c", "xdotool getactivewindow getwindowname | grep -q '^" + title + "\\($\\| [-—]\\)'"},
               Output::dropped) == 0;
}

/// Copies as another program would, which goes on owning the clipboard.
inline void copy(const QByteArray &content, const char *type) {
    QProcess copier;
    // xclip stays in the background as the owner: with its output open, waiting for it would never end.
    copier.setStandardOutputFile(QProcess::nullDevice());
    copier.setStandardErrorFile(QProcess::nullDevice());
    copier.start(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-t"_s, QString::fromLatin1(type)});
    copier.write(content);
    copier.closeWriteChannel();
    copier.waitForFinished();
}
/// The clipboard's content as that type; empty if it is not offered.
[[nodiscard]] inline QByteArray clipboard(const char *type) {
    return outputOf({"xclip", "-selection", "clipboard", "-t", type, "-o"});
}

} // namespace quillory::test::keyboard
