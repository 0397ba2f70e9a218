// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Applications/LinuxWorkspace.h"
#include "Platform/Linux/Doctor/LinuxDoctor.h"
#include "Platform/Linux/Folders.h"
#include "Platform/Linux/LinuxPlatform.h"
#include "Platform/Linux/Network/CurlURLSession.h"
#include "Platform/Linux/Process/HiddenInput.h"
#include "Platform/Linux/Process/LinuxProcess.h"
#include "Platform/Linux/Process/SignalPipe.h"
#include "Platform/Linux/Process/SingleInstance.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "Platform/Linux/Storage/SecretUserDefaults.h"
#include "Platform/Linux/Updates/UserApplications.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Windows.h"
#include "Quillory/Commands/CommandLine.h"
#include "Quillory/Records/FileLog.h"
#include "Quillory/UI/Setup/SetupWindow.h"
#include "Quillory/UI/Shell/AppDelegate.h"
#include "Quillory/UI/Shell/Windows.h"
#include "Quillory/Updates/UpdateChecker.h"
#include "Quillory/Updates/VersionHistory.h"

#include <QApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <iostream>
#include <string_view>
#include <unistd.h>

namespace {

namespace desktop = platform::desktop;

/// What commands reach the settings and the model service through.
struct CommandPlatform {
    desktop::LinuxProcess process;
    desktop::CurlURLSession urlSession;
    desktop::SecretService secrets;
    desktop::SecretUserDefaults userDefaults{secrets};
    quillory::ModelAccess access{userDefaults, process, urlSession, userDefaults};
};

std::shared_ptr<quillory::ModelAccess> accessModel() {
    const auto made = std::make_shared<CommandPlatform>();
    return {made, &made->access};
}

/// The panel is placed by screen position, which a native Wayland window cannot have; XWayland windows can.
void preferX11() {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    if (chosen.isEmpty() || chosen.startsWith("wayland")) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
}

void nameApplication() {
    QApplication::setApplicationName(QStringLiteral("Quillory"));
    QApplication::setDesktopFileName(QStringLiteral("quillory"));
}

/// What commands look at the desktop through: the same as the program's.
class RealDesktop final : public quillory::CommandDesktop {
  public:
    RealDesktop(int &argc, char **argv, std::unique_ptr<desktop::X11Connection> connection)
        : m_application(argc, argv), m_platform(std::move(connection)) {}
    void pass(std::chrono::milliseconds time) override {
        QEventLoop loop;
        QTimer::singleShot(time, &loop, &QEventLoop::quit);
        loop.exec();
    }
    [[nodiscard]] std::chrono::steady_clock::time_point now() const override {
        return std::chrono::steady_clock::now();
    }
    [[nodiscard]] const platform::Platform &services() const override { return m_platform.services(); }

  private:
    QApplication m_application;
    desktop::LinuxPlatform m_platform;
};

std::unique_ptr<quillory::CommandDesktop> openDesktop(int &argc, char **argv) {
    auto connection = desktop::X11Connection::open();
    if (!connection) {
        return nullptr;
    }
    preferX11();
    return std::make_unique<RealDesktop>(argc, argv, std::move(connection));
}

int runSetup(int &argc, char **argv, std::unique_ptr<desktop::X11Connection> opened,
             std::unique_ptr<desktop::SingleInstance> claim, desktop::LinuxDoctor &doctor) {
    preferX11();
    const QApplication application(argc, argv);
    nameApplication();
    const auto connection = std::move(opened); // ends before the application does
    const auto instance = std::move(claim);
    connection->watch();
    desktop::X11Windows windows(*connection);
    desktop::LinuxWorkspace workspace(&windows);
    desktop::QtMainQueue mainQueue;
    const auto access = accessModel();
    quillory::ui::SetupWindow window({doctor, *access}, mainQueue);
    if (instance) { // else the display has another, which does not answer
        instance->onSummons([&] { quillory::ui::bringToFront(window, workspace); });
    }
    quillory::ui::bringToFront(window, workspace);
    QApplication::exec();
    return window.canWork() ? quillory::exitStatus::success : quillory::exitStatus::failure;
}

/// The exit status of the set-up window, once it is closed; absent when there is no display for it. A display has one:
/// a second one brings it to the front and ends.
std::optional<int> setUpInWindow(int &argc, char **argv, desktop::LinuxDoctor &doctor) {
    using desktop::SingleInstance;
    auto connection = desktop::X11Connection::open();
    if (!connection) {
        return std::nullopt;
    }
    auto instance = SingleInstance::become(SingleInstance::Kind::setup);
    if (!instance && SingleInstance::summon(std::chrono::seconds(5), SingleInstance::Kind::setup)) {
        return quillory::exitStatus::success;
    }
    return runSetup(argc, argv, std::move(connection), std::move(instance), doctor);
}

/// The exit status of a command, or absent when the program itself is to run.
std::optional<int> runCommand(int &argc, char **argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    desktop::LinuxDoctor doctor;
    quillory::CommandServices services;
    services.accessModel = accessModel;
    services.openDesktop = [&] { return openDesktop(argc, argv); };
    services.doctor = &doctor;
    services.setUpInWindow = [&] { return setUpInWindow(argc, argv, doctor); };
    if (isatty(STDIN_FILENO) == 1) {
        services.readHidden = desktop::readHidden;
    }
    return quillory::runCommandLine(arguments, services, {std::cin, std::cout, std::cerr, isatty(STDOUT_FILENO) == 1});
}

/// The set-up in a process of its own: this one never writes the key.
class LaunchedSetup {
  public:
    void launch() {
        QProcess::startDetached(QCoreApplication::applicationFilePath(), {QStringLiteral("setup")}, {}, &m_pid);
    }
    /// Whether there is one, be it an earlier one that came to the front; no longer when it failed or was closed.
    [[nodiscard]] bool isThere() const {
        return desktop::processes::fingerprint(static_cast<qint32>(m_pid)) ||
               desktop::SingleInstance::isThere(desktop::SingleInstance::Kind::setup);
    }

  private:
    qint64 m_pid = 0;
};

int runProgram(int argc, char **argv, std::unique_ptr<desktop::X11Connection> connection,
               std::unique_ptr<desktop::SingleInstance> claim) {
    QApplication application(argc, argv);
    nameApplication();
    QApplication::setQuitOnLastWindowClosed(false);
    LaunchedSetup setup;
    const desktop::LinuxPlatform linuxPlatform(std::move(connection), [&] { return setup.isThere(); });
    quillory::FileLog::open(linuxPlatform.services().process.homeDirectory());
    const auto instance = std::move(claim); // listens while the application is there
    const platform::Platform &services = linuxPlatform.services();
    quillory::UpdateChecker updates(linuxPlatform.updateServices());
    quillory::ui::AppDelegate delegate(services, {.startPeriodicChecks = [&] { updates.startPeriodicChecks(); },
                                                  .check = [&](bool userInitiated) { updates.check(userInitiated); },
                                                  .launchSetup = [&] { setup.launch(); }});
    const desktop::TerminationSignals signalsToEnd([] { QApplication::quit(); });
    QTimer::singleShot(0, &application, [&] {
        delegate.applicationDidFinishLaunching();
        instance->onSummons([&delegate] { delegate.applicationDidReopen(); });
    });
    return QApplication::exec();
}

/// A newer Quillory in the user's own folder of applications runs instead of this one. Where it cannot be started,
/// this one goes on.
void startPreferred(char **argv) {
    const QByteArray program = desktop::applications::programToPrefer(
        desktop::applications::runningBundle(), [](const platform::SigningInformation &own, const QString &running) {
            return quillory::isFromOurTeam(own) &&
                   quillory::VersionHistory(desktop::folders::data()).permits(own.version, running);
        });
    if (!program.isEmpty()) {
        execv(program.constData(), argv);
    }
}

/// A program that is tried out before it is preferred is asked for its version, and must answer for itself.
bool isAskedAboutItself(int argc, char **argv) {
    const std::string_view command = argc > 1 ? argv[1] : "";
    return command == "--version" || command == "-v" || command == "--help" || command == "-h";
}

} // namespace

int main(int argc, char **argv) {
    if (!isAskedAboutItself(argc, argv)) {
        startPreferred(argv);
    }
    if (const auto status = runCommand(argc, argv)) {
        return *status;
    }
    auto connection = desktop::X11Connection::open();
    if (!connection) {
        std::cerr << "quillory: no X display can be reached; start it in a desktop session, or set DISPLAY\n";
        return 1;
    }
    auto instance = desktop::SingleInstance::become();
    if (!instance && desktop::SingleInstance::summon(std::chrono::seconds(5))) {
        return 0;
    }
    if (!instance) {
        instance = desktop::SingleInstance::become(); // the other one may just have ended
    }
    if (!instance) {
        std::cerr << "quillory: it is running already, but does not answer\n";
        return 1;
    }
    preferX11();
    return runProgram(argc, argv, std::move(connection), std::move(instance));
}
