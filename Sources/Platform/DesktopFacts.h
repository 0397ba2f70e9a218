// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace platform {

enum class SessionType { x11, wayland, unknown };

/// A page that a program shows.
struct PageFacts {
    /// Of its address; empty when it gives none.
    QString host;
    /// How many boxes in it can be written to.
    int textBoxes = 0;
};

/// A running browser or chat program, as far as the accessibility bus shows it.
struct ApplicationFacts {
    qint32 pid = 0;
    QString name;
    QString bundleIdentifier;
    bool isOnBus = false;
    /// Whether it has a window on the X display.
    bool hasX11Window = false;
    /// The pages that its tree shows; absent when it did not answer.
    std::optional<std::vector<PageFacts>> pages;
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
    /// Finds out everything anew. May take some seconds; grabs and lets go of keys on the way. Any thread, one at a
    /// time.
    [[nodiscard]] virtual DesktopFacts examine() = 0;
};

/// Changes what the user asked to have changed on the desktop. Each operation says whether it worked.
class DesktopMending {
  public:
    virtual ~DesktopMending() = default;
    /// Switches accessibility on for this session and, where the desktop has a setting for that, for later ones.
    virtual bool enableAccessibility() = 0;
    /// Whether the program starts with the session.
    virtual bool setStartsAtLogin(bool starts) = 0;
    /// Starts the program on this display; whether it runs. May take some seconds.
    virtual bool start() = 0;
    /// Ends a program as its user would and starts it again, so that it comes up with its tree and, in a Wayland
    /// session, on the X display. May take some seconds.
    virtual bool restart(const ApplicationFacts &application) = 0;
};

} // namespace platform
