// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/LinuxPlatform.h"

#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Process/LinuxProcess.h"
#include "Platform/Linux/Qt/QtApplication.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "Platform/Linux/StatusBar/LinuxStatusBar.h"
#include "Platform/Linux/Storage/SecretUserDefaults.h"
#include "Platform/Linux/Updates/LinuxCodeSigning.h"
#include "Platform/Linux/Updates/LinuxInstallation.h"
#include "Platform/Linux/Updates/UserApplications.h"
#include "Platform/Linux/X11/Clipboard/X11Pasteboard.h"
#include "Platform/Linux/X11/Keys/X11EventTaps.h"
#include "Platform/Linux/X11/Keys/X11KeyPoster.h"
#include "Platform/Linux/X11/Keys/X11Keyboard.h"
#include "Platform/Linux/X11/Panel/QtPanelWindow.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Screens.h"
#include "Platform/Linux/X11/X11SelectionWatch.h"
#include "Platform/Linux/X11/X11Windows.h"

namespace platform::desktop {

/// In the order in which they depend on each other.
struct LinuxPlatform::Private {
    Private(std::unique_ptr<X11Connection> opened, std::function<bool()> isTrustOffered)
        : isTrustOfferedElsewhere(std::move(isTrustOffered)), connection(std::move(opened)) {
        connection->watch();
    }

    std::function<bool()> isTrustOfferedElsewhere;
    QtMainQueue mainQueue;
    LinuxProcess process;
    SecretService secrets;
    SecretUserDefaults userDefaults{secrets, folders::configuration(), Saving::inBackground};
    CurlURLSession urlSession;
    LinuxCodeSigning codeSigning = LinuxCodeSigning::ofBundle(applications::runningBundle());
    LinuxInstallation installation{codeSigning};
    QtApplication application{[this] { workspace.activate(process.identifier()); }};
    std::unique_ptr<X11Connection> connection;
    X11Screens screens{*connection};
    X11Windows windows{*connection};
    X11SelectionWatch tray{*connection, connection->ofScreen("_NET_SYSTEM_TRAY_S"),
                           [this](const auto &change) { statusBar.embeddingTrayChanged(change.owner != XCB_NONE); }};
    LinuxStatusBar statusBar{mainQueue, tray.isOwned()};
    AtspiAccessibility accessibility{mainQueue,
                                     {.inPoints = [this](const Rect &rect) { return screens.accessibilityRect(rect); },
                                      .activeWindow = [this] { return windows.active(); },
                                      .isOfferedElsewhere = isTrustOfferedElsewhere,
                                      .sessionBusAddress = {}}};
    LinuxWorkspace workspace{&windows};
    X11Keyboard keyboard{*connection};
    X11EventTaps eventTaps{*connection, keyboard};
    X11KeyPoster keyPoster{*connection, keyboard, eventTaps};
    X11Pasteboard pasteboard{*connection};
    QtPanelWindows panelWindows{screens};
    Platform services{accessibility, eventTaps, keyPoster, mainQueue,  panelWindows, pasteboard,
                      process,       screens,   statusBar, urlSession, userDefaults, workspace};
    UpdateServices updateServices{application, codeSigning, installation, mainQueue, process, urlSession};
};

LinuxPlatform::LinuxPlatform(std::unique_ptr<X11Connection> connection, std::function<bool()> isTrustOfferedElsewhere)
    : m_private(std::make_unique<Private>(std::move(connection), std::move(isTrustOfferedElsewhere))) {}

LinuxPlatform::~LinuxPlatform() = default;

const Platform &LinuxPlatform::services() const {
    return m_private->services;
}

const UpdateServices &LinuxPlatform::updateServices() const {
    return m_private->updateServices;
}

} // namespace platform::desktop
