// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Driver/Tours.h"

#include <QCoreApplication>
#include <QDir>

#include <csignal>
#include <cstdlib>
#include <iostream>

std::atomic<bool> quillory::demo::stopRequested = false;

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGINT, [](int) { quillory::demo::stopRequested = true; });
    std::signal(SIGTERM, [](int) { quillory::demo::stopRequested = true; });
    try {
        if (qEnvironmentVariableIsEmpty("DISPLAY")) {
            return quillory::demo::runUnseen(
                QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../../demo")));
        }
        return quillory::demo::showOnDesktop();
    } catch (const std::exception &error) {
        std::cerr << "quillory-demo: " << error.what() << std::endl;
        return EXIT_FAILURE;
    }
}
