// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"
#include "Quillory/Model/ModelAccess.h"
#include "Quillory/Records/FileLog.h"
#include "SimulatedDesktop/Printing.h"
#include "SimulatedDesktop/SimulatedApplications.h"
#include "SimulatedDesktop/SimulatedInput.h"
#include "SimulatedDesktop/SimulatedMainQueue.h"
#include "SimulatedDesktop/SimulatedProcess.h"
#include "SimulatedDesktop/SimulatedURLSession.h"
#include "SimulatedDesktop/SimulatedUserDefaults.h"
#include "SimulatedDesktop/SimulatedWindows.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

/// A whole desktop in memory, and its user, who acts through its members. The log goes to its home folder.
class SimulatedDesktop final : private platform::KeyPoster {
  public:
    SimulatedDesktop() { FileLog::open(process.homeDirectory()); }

    SimulatedMainQueue mainQueue;
    SimulatedApplication application;
    SimulatedApplications applications;
    SimulatedEventTaps eventTaps;
    SimulatedPanelWindows panelWindows;
    SimulatedPasteboard pasteboard{mainQueue};
    SimulatedProcess process;
    SimulatedScreens screens;
    SimulatedStatusBar statusBar;
    SimulatedURLSession urlSession;
    SimulatedUserDefaults userDefaults;
    ModelAccess modelAccess{userDefaults, process, urlSession, userDefaults};

    bool userHoldsKey = false;
    /// How long the application is busy before it carries out a paste.
    std::chrono::milliseconds pasteDelay{0};
    /// The keys that the program typed, such as "Command-A".
    QStringList typed;

    /// The user presses a key without modifiers. True when it reaches the application.
    bool press(platform::KeyCode key) {
        const bool passes = eventTaps.press(key) == platform::TapVerdict::pass;
        advance(0);
        return passes;
    }
    void advance(int milliseconds) { mainQueue.advance(std::chrono::milliseconds(milliseconds)); }
    [[nodiscard]] QStringList log() const { return process.logMessages(); }
    [[nodiscard]] platform::KeyPoster &keyPoster() { return *this; }
    [[nodiscard]] const platform::Platform &services() const { return m_services; }

  private:
    [[nodiscard]] bool userHoldsKeys() override { return userHoldsKey; }
    // Whatever has the focus takes the keys, wherever the program meant them to go.
    bool postKey(platform::KeyCode key, platform::EventFlags flags) override {
        const bool pastes = key == platform::keyCode::v;
        typed += (flags == platform::eventFlag::command ? u"Command-"_s : u"?-"_s) + (pastes ? u'V' : u'A');
        if (const Node field = applications.focused; pastes && field) {
            mainQueue.postAfter(pasteDelay, [this, field, replaces = m_allSelected] {
                const QString pasted = pasteboard.fetch();
                field->write(replaces ? pasted : field->value() + pasted);
            });
        }
        m_allSelected = !pastes;
        return true;
    }

    bool m_allSelected = false;
    platform::Platform m_services{applications, eventTaps, *this,     mainQueue,  panelWindows, pasteboard,
                                  process,      screens,   statusBar, urlSession, userDefaults, applications};
};

} // namespace quillory::test
