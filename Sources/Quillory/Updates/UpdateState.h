// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"
#include "Quillory/Tasks.h"

#include <memory>

namespace quillory {

/// What the names of an update's work folders begin with.
inline const QString updateWorkName = QStringLiteral("QuilloryUpdate-");

/// What the update keeps between its steps.
struct UpdateState {
    platform::RegistrationHandle timer;
    bool isOfferOpen = false;
    /// While an install runs.
    std::unique_ptr<platform::ProgressWindow> progress;
    /// Gone with this, so that what was queued knows. Renewed when everything is ended.
    std::shared_ptr<bool> life = std::make_shared<bool>(true);
    std::unique_ptr<Tasks> tasks = std::make_unique<Tasks>();
};

/// Of the installed services. Main thread only.
[[nodiscard]] UpdateState &updateState();
/// Runs work on the main thread, unless everything has been ended by then. Any thread.
void onMainThread(const std::weak_ptr<bool> &life, std::function<void()> work);
/// A message with one button.
void showAlert(const QString &title, const QString &body);
/// What went wrong, from within a handler, in words for the user; absent when it was only cancelled.
[[nodiscard]] std::optional<QString> descriptionOfCurrentError();

/// Which versions there have been on this computer.
namespace versionHistory {
/// The highest version that has ever run for the user with that home of the program; "0" when that is not known. Any
/// thread.
[[nodiscard]] QString highest(const QString &home);
/// Remembers a version that runs.
void remember(const QString &version, const QString &home);
} // namespace versionHistory

} // namespace quillory
