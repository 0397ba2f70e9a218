// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace platform {

/// A question or a message that the user has to answer before anything else in the program's windows.
struct Alert {
    QString title;
    QString body;
    /// From the one that the Return key presses on; a single "OK" when there are none. The last one is what closing
    /// the alert means.
    QStringList buttons;
};

/// A small window that tells how far a long piece of work has come. It is gone with this object.
class ProgressWindow {
  public:
    virtual ~ProgressWindow() = default;
    /// What is being done, and how much of it, from 0 to 1; absent when that is not known.
    virtual void show(const QString &work, std::optional<double> done) = 0;
};

/// The program as an application of the desktop. Main thread only.
class Application {
  public:
    virtual ~Application() = default;
    /// Comes to the front and asks. Returns at once: the program goes on, and the function gets the number of the
    /// chosen button later. Alerts that are asked for meanwhile wait for their turn.
    virtual void runAlert(const Alert &alert, std::function<void(int)> answered) = 0;
    /// Shows a window with a button "Cancel", which calls the function once.
    [[nodiscard]] virtual std::unique_ptr<ProgressWindow> showProgress(const QString &title,
                                                                       std::function<void()> cancel) = 0;
    /// Ends the program in good order, soon.
    virtual void terminate() = 0;
};

} // namespace platform
