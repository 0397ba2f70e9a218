// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

class Accessibility;
class Application;
class CodeSigning;
class EventTaps;
class Installation;
class KeyPoster;
class MainQueue;
class PanelWindows;
class Pasteboard;
class Process;
class Screens;
class StatusBar;
class URLSession;
class UserDefaults;
class Workspace;

/// What the program asks of a desktop while it runs: one of each service. Filled by the entry point or by a test, and
/// handed on in parts: a unit takes the services that it uses. They outlive everything that uses them.
struct Platform {
    Accessibility &accessibility;
    EventTaps &eventTaps;
    KeyPoster &keyPoster;
    MainQueue &mainQueue;
    PanelWindows &panelWindows;
    Pasteboard &pasteboard;
    Process &process;
    Screens &screens;
    StatusBar &statusBar;
    URLSession &urlSession;
    UserDefaults &userDefaults;
    Workspace &workspace;
};

/// What checking for updates and installing them ask of it.
struct UpdateServices {
    Application &application;
    CodeSigning &codeSigning;
    Installation &installation;
    MainQueue &mainQueue;
    Process &process;
    URLSession &urlSession;
};

} // namespace platform
