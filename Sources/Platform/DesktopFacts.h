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
    /// The host in its address; empty when it gives no address.
    QString host;
    /// In pixels of the screen, y downwards.
    std::optional<Rect> frame;
    std::vector<FieldFacts> fields;
};

/// What was found of a program's pages.
struct PagesFacts {
    std::vector<PageFacts> pages;
    /// Whether the program's whole tree could be read in the time allowed.
    bool isWhole = true;
};

/// A running browser or chat program, as far as the accessibility bus shows it.
struct ApplicationFacts {
    qint32 pid = 0;
    QString name;
    QString bundleIdentifier;
    bool isOnBus = false;
    /// Whether it has a window on the X display.
    bool hasX11Window = false;
    /// Absent when it did not answer.
    std::optional<PagesFacts> tree;
};

/// What matters to Quillory about the desktop. An absent value could not be found out.
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
    /// A status area for status notifier items, and one for the older tray icons.
    bool hasStatusNotifier = false;
    bool hasTray = false;
    /// Whether Quillory could take these keys while cards are up. The X server does not reveal who else has one.
    std::optional<bool> canGrabTab;
    std::optional<bool> canGrabEscape;
    bool hasCompositor = false;
    bool hasClipboardManager = false;
    bool startsAtLogin = false;
    /// Whether Quillory runs on this display.
    std::optional<bool> isRunning;
    /// Versions of the system and the libraries, for bug reports.
    QStringList versions;
};

/// Examines the desktop, and changes it as the user asked. Any thread. An operation that takes a token may take some
/// seconds; once asked to stop, it returns what it has.
class DesktopDoctor {
  public:
    virtual ~DesktopDoctor() = default;
    /// Finds out everything anew. Takes the keys for an instant to see whether it can.
    [[nodiscard]] virtual DesktopFacts examine(const std::stop_token &stop) = 0;
    /// The running browsers and chat programs alone, without a trace for the user.
    [[nodiscard]] virtual std::vector<ApplicationFacts> examineApplications(const std::stop_token &stop) = 0;
    /// Switches accessibility on for this session and, where the desktop has a setting for it, for later ones. Returns
    /// whether it worked.
    virtual bool enableAccessibility(const std::stop_token &stop) = 0;
    /// Makes Quillory start at every login, or no longer. Returns whether it worked.
    virtual bool setStartsAtLogin(bool starts) = 0;
    /// Starts Quillory on this display and waits until it runs. Returns whether it does.
    virtual bool start(const std::stop_token &stop) = 0;
};

} // namespace platform
