// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "HalfRealDesktop.h"

#include "Quillory/Settings/AppSettings.h"

#include <QEventLoop>
#include <QTimer>

#include <stdexcept>

namespace quillory {

HalfRealDesktop::HalfRealDesktop(int port) : m_connection(platform::desktop::X11Connection::open()) {
    if (!m_connection) {
        throw std::runtime_error("there is no display");
    }
    m_connection->watch();
    m_screens = std::make_unique<platform::desktop::X11Screens>(*m_connection);
    m_windows = std::make_unique<platform::desktop::QtPanelWindows>(*m_screens);
    const platform::Platform &simulated = m_simulated.services();
    m_services = std::make_unique<platform::Platform>(platform::Platform{.accessibility = simulated.accessibility,
                                                                         .eventTaps = simulated.eventTaps,
                                                                         .keyPoster = simulated.keyPoster,
                                                                         .mainQueue = m_queue,
                                                                         .panelWindows = *m_windows,
                                                                         .pasteboard = simulated.pasteboard,
                                                                         .process = simulated.process,
                                                                         .screens = *m_screens,
                                                                         .statusBar = simulated.statusBar,
                                                                         .urlSession = m_session,
                                                                         .userDefaults = simulated.userDefaults,
                                                                         .workspace = simulated.workspace});
    m_simulated.process.variables[QStringLiteral("QUILLORY_MODEL_SERVICE")] =
        QStringLiteral("http://127.0.0.1:%1").arg(port);
    set(settingsKey::openRouterAPIKey, QStringLiteral("key"));
    const auto window = m_simulated.applications.launch({12, QStringLiteral("net.whatsapp.bench"), {}}, {});
    m_field = window->add(platform::axRole::textArea, {100, 600, 500, 40});
    m_simulated.applications.focused = m_field;
}

void runEventsUntil(const std::function<bool()> &done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (done() || std::chrono::steady_clock::now() >= end) {
            loop.quit();
        }
    });
    look.start(20);
    loop.exec();
}

} // namespace quillory
