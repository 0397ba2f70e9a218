// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/RealDesktop.h"

#include <QDir>

#include <stdexcept>

namespace quillory::test {
namespace {

int askAccessibilityBus(const std::vector<std::string> &question) {
    std::vector<std::string> arguments{"dbus-send",           "--session",
                                       "--type=method_call",  "--print-reply=literal",
                                       "--dest=org.a11y.Bus", "/org/a11y/bus"};
    arguments.insert(arguments.end(), question.begin(), question.end());
    return run(arguments, Output::dropped);
}

bool hasWindowManager() {
    return run({"sh", "-c", "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'"}, Output::dropped) == 0;
}

} // namespace

RealDesktop::RealDesktop() : RealDesktop(Options{}) {}

RealDesktop::RealDesktop(const Options &options) {
    setEnvironment();
    startServer("DISPLAY", ":",
                {"Xvfb", "-screen", "0", options.screen, "-nolisten", "tcp", "-noreset", "-displayfd", "1"});
    startServer("DBUS_SESSION_BUS_ADDRESS", "",
                {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"});
    m_programs.emplace_back(std::vector<std::string>{"openbox", "--sm-disable"}, Output::dropped);
    if (options.compositor) {
        m_programs.emplace_back(std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
                                Output::dropped);
    }
    m_programs.emplace_back(std::vector<std::string>{"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"},
                            Output::dropped);
    if (!waitUntil([] { return askAccessibilityBus({"org.a11y.Bus.GetAddress"}) == 0; })) {
        throw std::runtime_error("the accessibility bus did not start");
    }
    setAccessibilityEnabled(true);
    // A window that comes before the window manager never gets the focus.
    if (!waitUntil(hasWindowManager)) {
        throw std::runtime_error("the window manager did not start");
    }
}

RealDesktop::~RealDesktop() {
    while (!m_programs.empty()) {
        m_programs.pop_back();
    }
    for (const auto &[name, value] : m_savedEnvironment) {
        value.isNull() ? qunsetenv(name.constData()) : qputenv(name.constData(), value);
    }
}

void RealDesktop::setAccessibilityEnabled(bool enabled) {
    askAccessibilityBus({"org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                         enabled ? "variant:boolean:true" : "variant:boolean:false"});
}

void RealDesktop::setEnvironment() {
    const auto set = [this](const char *name, const QByteArray &value) {
        m_savedEnvironment.emplace_back(name, qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray());
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    };
    const auto folder = [this](const char *name) {
        const QString path = m_folder.filePath(QString::fromLatin1(name));
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path.toUtf8();
    };
    set("HOME", folder("home"));
    set("XDG_CONFIG_HOME", folder("config"));
    set("XDG_DATA_HOME", folder("data"));
    set("XDG_CACHE_HOME", folder("cache"));
    set("XDG_RUNTIME_DIR", folder("run"));
    set("QT_QPA_PLATFORM", "xcb");
    set("LC_ALL", "C.UTF-8");
    for (const char *name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "AT_SPI_BUS_ADDRESS",
                             "XAUTHORITY", "OPENROUTER_API_KEY", "QUILLORY_MODEL_SERVICE"}) {
        set(name, {});
    }
}

void RealDesktop::startServer(const char *variable, const char *prefix, const std::vector<std::string> &arguments) {
    const std::string told = m_programs.emplace_back(arguments, Output::read).line();
    if (told.empty()) {
        throw std::runtime_error(arguments.front() + " did not start");
    }
    qputenv(variable, QByteArray::fromStdString(prefix + told));
}

} // namespace quillory::test
