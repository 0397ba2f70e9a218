// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "RealDesktop/RealDesktop.h"

#include <QDir>

#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quillory::test {

namespace {

/// What a program writes into the pipe that it is given, up to the first line break.
template <typename Start> std::string firstLineFrom(Start start) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    start(ends[1]);
    close(ends[1]);
    std::string line;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) {
        line += c;
    }
    close(ends[0]);
    return line;
}

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
    startDisplay(options.screen);
    startBus();
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
    setAccessibilityEnabled(options.accessibility);
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

void RealDesktop::startDisplay(const char *screen) {
    const std::string number = firstLineFrom([&](int fd) {
        m_programs.emplace_back(std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(fd), "-screen", "0",
                                                         screen, "-nolisten", "tcp", "-noreset"},
                                Output::dropped, fd);
    });
    if (number.empty()) {
        throw std::runtime_error("Xvfb did not start");
    }
    qputenv("DISPLAY", QByteArray::fromStdString(":" + number));
}

void RealDesktop::startBus() {
    const std::string address = firstLineFrom([&](int fd) {
        m_programs.emplace_back(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                                         "--print-address=" + std::to_string(fd)},
                                Output::dropped, fd);
    });
    if (address.empty()) {
        throw std::runtime_error("the session bus did not start");
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(address));
}

} // namespace quillory::test
