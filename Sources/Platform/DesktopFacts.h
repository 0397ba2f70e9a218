// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <stop_token>
#include <vector>

namespace platform {

enum class SessionType { x11, wayland, unknown };

/// A field of a page that can be written to.
struct FieldFacts {
    /// As in Accessibility.h.
    QString role;
    /// In pixels of the screen, y downwards; absent when it is not on the screen.
    std::optional<Rect> frame;
};

/// A page that a program shows.
struct PageFacts {
    /// Of its address; empty when it gives none.
    QString host;
    std::optional<Rect> frame;
    std::vector<FieldFacts> fields;
};

/// What was found of a program's pages.
struct PagesFacts {
    std::vector<PageFacts> pages;
    /// Whether its whole tree could be read in the time that there was for it.
    bool isWhole = true;
};

/// A running browser or chat program, as far as the accessibility bus shows it.
struct ApplicationFacts {
    qint32 pid = 0;
    /// Tells the process from a later one that was given the same number.
    quint64 startTime = 0;
    QString name;
    QString bundleIdentifier;
    bool isOnBus = false;
    /// Whether it has a window on the X display.
    bool hasX11Window = false;
    /// Absent when it did not answer.
    std::optional<PagesFacts> tree;
};

/// What can be found out about the desktop that matters to this program. Absent: it could not be found out.
struct DesktopFacts {
    SessionType session = SessionType::unknown;
    /// What the desktop calls itself, such as "KDE".
    QString desktopName;
    bool hasDisplay = false;
    QString windowManager;
    bool hasSessionBus = false;
    bool hasAccessibilityBus = false;
    std::optional<bool> isAccessibilityEnabled;
    /// Whether the desktop's settings switch accessibility on at every login.
    std::optional<bool> isAccessibilityKept;
    std::vector<ApplicationFacts> applications;
    /// A status area of the newer kind, and of the older.
    bool hasStatusNotifier = false;
    bool hasTray = false;
    /// Whether these keys can be had while cards are up; the X server does not tell who else has one.
    std::optional<bool> canGrabTab;
    std::optional<bool> canGrabEscape;
    bool hasCompositor = false;
    bool hasClipboardManager = false;
    bool startsAtLogin = false;
    /// Whether the program runs on this display.
    std::optional<bool> isRunning;
    /// Of the system and the libraries, for bug reports.
    QStringList versions;
};

/// Looks at the desktop.
class DesktopExamination {
  public:
    virtual ~DesktopExamination() = default;
    /// Finds out everything anew. May take some seconds; grabs and lets go of keys on the way. Once the token asks to
    /// stop it gives what it has. Any thread, one at a time.
    [[nodiscard]] virtual DesktopFacts examine(const std::stop_token &stop) = 0;
};

/// What came of starting a program anew.
enum class RestartOutcome {
    restarted,
    /// It was told to end and takes long over it, or asks its user something; it is not started again.
    isStillEnding,
    /// It was gone already, cannot be started from here, or did not come up.
    failed,
};

/// Changes what the user asked to have changed on the desktop. Each operation says whether it worked; one that takes a
/// token may take some seconds, and no longer waits for the outcome once that asks to stop.
class DesktopMending {
  public:
    virtual ~DesktopMending() = default;
    /// Switches accessibility on for this session and, where the desktop has a setting for that, for later ones.
    virtual bool enableAccessibility(const std::stop_token &stop) = 0;
    /// Whether the program starts with the session.
    virtual bool setStartsAtLogin(bool starts) = 0;
    /// Starts the program on this display; whether it runs.
    virtual bool start(const std::stop_token &stop) = 0;
    /// Ends a program as its user would and starts it again, so that it comes up with its tree and, in a Wayland
    /// session, on the X display. Touches nothing when the program that was found has ended meanwhile. What ends within
    /// some seconds is started again even when the token asks to stop.
    virtual RestartOutcome restart(const ApplicationFacts &application, const std::stop_token &stop) = 0;
};

} // namespace platform
