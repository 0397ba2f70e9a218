// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CodeSigning.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

/// Learns of new versions from the maker's version feed, offers them, and on consent puts them in this one's place.
/// Main thread only, where nothing else is said; nothing waits there.
namespace quillory::UpdateChecker {

/// Checks now and every six hours, silently unless there is something to offer. Each check remembers which version ran.
void startPeriodicChecks();
/// Starts one check. One that the user asked for also says that there is nothing new, or what went wrong.
void check(bool userInitiated);
/// Ends what runs and waits for it, and ends the periodic checks.
void stop();

/// The version of the running program; "0" when its bundle states none. Any thread.
[[nodiscard]] QString currentVersion();
/// Whether a version of dotted numbers comes after another one. Any thread.
[[nodiscard]] bool isNewer(const QString &version, const QString &other);
/// Whether a genuine bundle runs in place of a running version: it is ours, newer, and not older than the highest
/// version that has ever run for the user with that home of the program. Any thread.
[[nodiscard]] bool takesPrecedence(const platform::SigningInformation &bundle, const QString &running,
                                   const QString &home);
/// Offers a version with its notes, and installs it from the address on consent. An offer that is made while another
/// one stands, or while a version is being installed, is dropped.
void offerUpdate(const QString &version, const QString &notes, const QUrl &archive);
/// Downloads an archive, verifies the application in it, puts it in the place of the installed one, starts that and
/// ends this program. Says in an alert why it could not.
void install(const QUrl &archive);
/// The team that signed the bundle at a path, if it is genuine. Not on the main thread.
[[nodiscard]] std::optional<QString> teamID(const QString &bundle);

} // namespace quillory::UpdateChecker
