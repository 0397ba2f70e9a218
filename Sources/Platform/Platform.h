// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Application.h"
#include "Platform/CodeSigning.h"
#include "Platform/FileSystem.h"
#include "Platform/Keys.h"
#include "Platform/MainQueue.h"
#include "Platform/PanelWindow.h"
#include "Platform/Pasteboard.h"
#include "Platform/Process.h"
#include "Platform/Screens.h"
#include "Platform/StatusBar.h"
#include "Platform/SystemTools.h"
#include "Platform/URLSession.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"

#include <cstdint>

namespace platform {

/// One of each of the services that the program asks of a desktop. Filled by the program's entry point, or by a test;
/// the services outlive everything that uses them.
struct Platform {
    Accessibility &accessibility;
    Application &application;
    CodeSigning &codeSigning;
    EventTaps &eventTaps;
    FileSystem &fileSystem;
    KeyPoster &keyPoster;
    MainQueue &mainQueue;
    PanelWindows &panelWindows;
    Pasteboard &pasteboard;
    Process &process;
    Screens &screens;
    StatusBar &statusBar;
    SystemTools &systemTools;
    URLSession &urlSession;
    UserDefaults &userDefaults;
    Workspace &workspace;
};

/// The services that the program runs on. Set before the first thread starts; asking before that is a programming
/// error and ends the program.
[[nodiscard]] const Platform &current();

/// A number that is another one for every installation, so that what was made for earlier services can be told.
[[nodiscard]] std::uint64_t generation();

/// Makes a set of services the current one until this object is destroyed.
class Installation {
  public:
    explicit Installation(const Platform &platform);
    ~Installation();
    Installation(const Installation &) = delete;
    Installation &operator=(const Installation &) = delete;
};

} // namespace platform
