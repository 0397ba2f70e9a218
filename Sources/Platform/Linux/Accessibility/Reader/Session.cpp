// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Reader/Session.h"

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto retryPause = 1s;
constexpr auto serviceTime = 500ms;
// For a call that may have to start the service first.
constexpr auto startTime = 2s;
constexpr auto startPause = 1min;

Deadline deadlineOf(bool mayStart) {
    return Clock::now() + (mayStart ? startTime : serviceTime);
}
} // namespace

Session::Session(std::string sessionBusAddress, qint32 ownPid, Board &board, const StopSignal &stop,
                 std::function<void()> giveWay)
    : m_sessionBusAddress(std::move(sessionBusAddress)), m_ownPid(ownPid), m_board(board), m_stop(stop),
      m_giveWay(std::move(giveWay)), m_retryAt(Clock::now()) {}

void Session::process() {
    if (m_session != nullptr && !m_session->process()) {
        m_session.reset();
    }
    if (m_bus != nullptr && !m_bus->process()) {
        loseAccessibility();
    }
    if ((m_session == nullptr || m_bus == nullptr) && Clock::now() >= m_retryAt) {
        connect();
    }
    if (m_session != nullptr && std::exchange(m_mustReadEnabled, false)) {
        readEnabled(false);
    }
    m_board.hasBus = m_bus != nullptr;
    m_board.isTrusted = m_bus != nullptr && m_isEnabled;
    if (m_focus != nullptr) {
        m_focus->settle();
        const auto &field = m_focus->focus().reading;
        m_mirror->settle(field != nullptr ? field->frame : std::nullopt);
    }
}

Clock::time_point Session::nextWake() const {
    return m_focus != nullptr && m_session != nullptr ? std::min(m_focus->nextLook(), m_mirror->nextLook()) : m_retryAt;
}

std::vector<sd_bus *> Session::buses() const {
    std::vector<sd_bus *> buses;
    for (const auto *connection : {m_session.get(), m_bus.get()}) {
        if (connection != nullptr && connection->isOpen()) {
            buses.push_back(connection->bus());
        }
    }
    return buses;
}

void Session::connect() {
    const bool mayStart = Clock::now() >= m_startAt;
    connectSession(mayStart);
    connectAccessibility(mayStart);
    if (mayStart && m_session != nullptr) {
        m_startAt = Clock::now() + startPause;
    }
    m_retryAt = Clock::now() + retryPause;
}

// A new bus hands out the same names again, so everything known by name goes with this one.
void Session::loseAccessibility() {
    m_focus.reset();
    m_mirror.reset();
    m_bus.reset();
    m_board.setFocus({});
    m_board.setPage({});
    m_retryAt = Clock::now() + retryPause;
}

void Session::connectSession(bool mayStart) {
    if (m_session != nullptr) {
        return;
    }
    auto session = std::make_unique<Connection>(m_sessionBusAddress, m_stop);
    if (!session->isOpen()) {
        return;
    }
    m_session = std::move(session);
    m_session->match("type='signal',path='/org/a11y/bus',member='PropertiesChanged',arg0='org.a11y.Status'",
                     [this](sd_bus_message *) { m_mustReadEnabled = true; });
    readEnabled(mayStart);
}

void Session::connectAccessibility(bool mayStart) {
    if (m_session == nullptr || m_bus != nullptr) {
        return;
    }
    const auto address = m_session->call(calls::accessibilityBusAddress(mayStart), deadlineOf(mayStart)).as<QString>();
    if (!address || address->isEmpty()) {
        return;
    }
    auto bus = std::make_unique<Connection>(address->toStdString(), m_stop);
    if (!bus->call(calls::busId(), deadlineOf(false)).as<QString>()) {
        return;
    }
    m_bus = std::move(bus);
    m_focus = std::make_unique<FocusTracker>(*m_bus, m_ownPid, [this](const Focus &focus) { m_board.setFocus(focus); });
    m_mirror =
        std::make_unique<PageMirror>(*m_bus, m_giveWay, [this](const MirroredPage &page) { m_board.setPage(page); });
    readEnabled(false);
}

void Session::readEnabled(bool mayStart) {
    const auto reply = m_session->call(calls::isAccessibilityOn(mayStart), deadlineOf(mayStart));
    m_isEnabled = reply.as<bool>().value_or(false);
}

void Session::enable() {
    connectSession(true);
    if (m_session == nullptr) {
        return;
    }
    m_session->call(calls::switchAccessibilityOn(), deadlineOf(true));
    m_retryAt = Clock::now();
    m_mustReadEnabled = true;
}

} // namespace platform::desktop::atspi
