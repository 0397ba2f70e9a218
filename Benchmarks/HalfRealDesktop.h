// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "Platform/Linux/X11/Panel/QtPanelWindow.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Screens.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <chrono>
#include <functional>

namespace quillory {

/// A desktop whose network, clock, screens and windows are real. The rest is simulated, the field that is typed into
/// included.
class HalfRealDesktop {
  public:
    /// port: where the model service listens on this machine. Throws std::runtime_error without a display.
    explicit HalfRealDesktop(int port);

    void type(const QString &draft) { m_field->setValue(draft); }
    [[nodiscard]] const platform::Platform &services() const { return *m_services; }
    void set(const QString &key, const platform::DefaultsValue &value) { m_simulated.userDefaults.set(key, value); }

  private:
    test::SimulatedDesktop m_simulated;
    platform::desktop::QtMainQueue m_queue;
    std::unique_ptr<platform::desktop::X11Connection> m_connection;
    std::unique_ptr<platform::desktop::X11Screens> m_screens;
    std::unique_ptr<platform::desktop::QtPanelWindows> m_windows;
    platform::desktop::CurlURLSession m_session;
    std::unique_ptr<platform::Platform> m_services;
    test::Node m_field;
};

/// Runs the event loop until the condition holds, for ten seconds at most.
void runEventsUntil(const std::function<bool()> &done);

} // namespace quillory
