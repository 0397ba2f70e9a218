// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/DesktopFacts.h"
#include "Platform/Platform.h"
#include "Quillory/Model/ModelAccess.h"

#include <QStringList>

#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>

namespace quillory {

/// What a command reads and writes.
struct CommandStreams {
    std::istream &input;
    std::ostream &output;
    std::ostream &errors;
    /// Whether the output is a terminal, so that text may be shown as it grows.
    bool outputIsTerminal = false;
};

/// The exit statuses of commands.
namespace exitStatus {
inline constexpr int success = 0;
/// There was nothing to show, or a value could not be saved.
inline constexpr int failure = 1;
/// The arguments were wrong; nothing was done.
inline constexpr int misuse = 2;
} // namespace exitStatus

/// The real desktop.
class CommandDesktop {
  public:
    CommandDesktop() = default;
    virtual ~CommandDesktop() = default;
    CommandDesktop(const CommandDesktop &) = delete;
    CommandDesktop &operator=(const CommandDesktop &) = delete;
    [[nodiscard]] virtual const platform::Platform &services() const = 0;
    /// Handles what happens on the desktop until so much time has passed.
    virtual void pass(std::chrono::milliseconds time) = 0;
    /// What that and all work in between moves on.
    [[nodiscard]] virtual std::chrono::steady_clock::time_point now() const = 0;
};

/// What commands need of the platform, since most run without the rest of it.
struct CommandServices {
    /// Opens the settings, the storage of the key and what the model service is asked through.
    std::function<std::shared_ptr<ModelAccess>()> accessModel;
    /// Opens the desktop, for the commands that look at it; null when no display can be reached.
    std::function<std::unique_ptr<CommandDesktop>()> openDesktop;
    /// For the commands that look after the desktop; never null for those.
    platform::DesktopDoctor *doctor = nullptr;
    /// Sets things up in a window and gives the exit status; absent when there is no display to show it on.
    std::function<std::optional<int>()> setUpInWindow;
    /// Reads a line that is not shown while it is typed, with what is pasted after its line breaks; none where the
    /// input is no terminal.
    std::function<QString()> readHidden;
};

/// Runs the command that the arguments (without the program's name) ask for and returns the exit status; absent when
/// they ask for none and Quillory itself is to start. Options with one dash belong to Qt and to session management, so
/// they ask for no command. Needs no display.
[[nodiscard]] std::optional<int> runCommandLine(const QStringList &arguments, const CommandServices &services,
                                                const CommandStreams &streams);

} // namespace quillory
