// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChatWindow/ChatWindow.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("A chat window to try the writing assistant in."));
    options.addHelpOption();
    options.addOption({QStringLiteral("report"),
                       QStringLiteral("Keep a file up to date with what the message box holds."),
                       QStringLiteral("file")});
    options.process(application);
    quillory::demo::ChatWindow window(options.value(QStringLiteral("report")));
    window.show();
    return QApplication::exec();
}
