// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Connection.h"

#include <algorithm>
#include <poll.h>
#include <sys/eventfd.h>

namespace platform::desktop::atspi {

namespace {
using namespace std::chrono_literals;
constexpr auto noTimeout = static_cast<std::uint64_t>(-1);
// The bus limits how many replies a connection may wait for, and an application's queue is limited too.
constexpr std::size_t callsInFlight = 1000;
// Signals can come faster than they are handled; other work gets its turn in between.
constexpr int messagesInOneGo = 200;
// An application that had less time than this to answer may only be busy.
constexpr auto shortestSilence = 100ms;

int runHandler(sd_bus_message *message, void *userdata, sd_bus_error *) {
    (*static_cast<Connection::Handler *>(userdata))(message);
    return 0;
}
} // namespace

StopSignal::StopSignal() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void StopSignal::request() {
    m_isRequested = true;
    eventfd_write(m_event.get(), 1);
}

void waitForActivity(const std::vector<sd_bus *> &buses, int descriptor, Deadline until) {
    std::vector<pollfd> activities{{descriptor, POLLIN, 0}};
    for (auto *bus : buses) {
        const int events = sd_bus_get_events(bus);
        activities.push_back({sd_bus_get_fd(bus), static_cast<short>(std::max(events, 0)), 0});
        std::uint64_t due = 0;
        if (sd_bus_get_timeout(bus, &due) >= 0 && due != static_cast<std::uint64_t>(-1)) {
            // The library counts on the same monotonic clock, in microseconds.
            until = std::min(until, Clock::time_point(std::chrono::microseconds(due)));
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    poll(activities.data(), activities.size(), static_cast<int>(std::clamp<long long>(left, 0, 60'000)));
}

std::string sessionBusAddress() {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const auto folder = qgetenv("XDG_RUNTIME_DIR");
    return (address.isEmpty() && !folder.isEmpty() ? "unix:path=" + folder + "/bus" : address).toStdString();
}

Connection::Connection(const std::string &address, const StopSignal &stop) : m_stop(stop) {
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0) {
        return;
    }
    m_bus.reset(bus);
    if (sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 || sd_bus_start(bus) < 0) {
        m_bus.reset();
        return;
    }
    match("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',member='NameOwnerChanged'",
          [this](sd_bus_message *message) {
              if (const auto name = vanishedName(message)) {
                  forget(*name);
              }
          });
}

bool Connection::isOpen() const {
    return m_bus != nullptr && !m_stop.isRequested() && sd_bus_is_open(m_bus.get()) > 0;
}

bool Connection::process() {
    const bool isWell = handleArrived();
    for (const auto &name : std::exchange(m_answering, {})) {
        m_silent.erase(name);
    }
    return isWell && isOpen();
}

bool Connection::handleArrived() {
    int handled = isOpen() ? 1 : -1;
    for (int i = 0; i < messagesInOneGo && handled > 0; ++i) {
        handled = sd_bus_process(m_bus.get(), nullptr);
    }
    return handled >= 0;
}

// Handles a message, or waits for one. False when the time is up or the connection is lost.
bool Connection::waitFor(Deadline deadline) {
    if (!isOpen() || Clock::now() >= deadline) {
        return false;
    }
    const int handled = sd_bus_process(m_bus.get(), nullptr);
    if (handled == 0) {
        waitForActivity({m_bus.get()}, m_stop.descriptor(), deadline);
    }
    return handled >= 0;
}

MessagePtr Connection::build(const Call &call) const {
    sd_bus_message *message = nullptr;
    if (sd_bus_message_new_method_call(m_bus.get(), &message, call.target.bus.c_str(), call.target.path.c_str(),
                                       call.interface, call.member) < 0) {
        return nullptr;
    }
    MessagePtr built(message);
    sd_bus_message_set_auto_start(message, call.mayStart ? 1 : 0);
    return !call.arguments || call.arguments(message) >= 0 ? std::move(built) : nullptr;
}

Connection::Subscription Connection::sendAsync(const Call &call, Handler handler) {
    Subscription answer{std::make_unique<Handler>(std::move(handler)), nullptr};
    const auto message = build(call);
    sd_bus_slot *slot = nullptr;
    if (message != nullptr &&
        sd_bus_call_async(m_bus.get(), &slot, message.get(), runHandler, answer.handler.get(), noTimeout) >= 0) {
        answer.slot.reset(slot);
        ++m_counters.messages;
    }
    return answer;
}

std::vector<Reply> Connection::callAll(const std::vector<Call> &calls, Deadline deadline) {
    std::vector<Reply> replies(calls.size());
    const auto begin = Clock::now();
    if (!isOpen() || calls.empty() || begin >= deadline) {
        return replies;
    }
    std::vector<Subscription> sent(calls.size());
    std::size_t outstanding = 0;
    ++m_counters.roundTrips;
    bool inTime = true;
    for (std::size_t i = 0; i < calls.size() && inTime; ++i) {
        while (inTime && outstanding >= callsInFlight) {
            inTime = waitFor(deadline);
        }
        if (inTime && !isSilent(calls[i].target.bus) && !calls[i].target.isNull()) {
            sent[i] = sendAsync(calls[i], [&reply = replies[i], &outstanding](sd_bus_message *message) {
                reply = Reply(MessagePtr(sd_bus_message_ref(message)));
                --outstanding;
            });
            outstanding += sent[i].slot != nullptr ? 1 : 0;
        }
    }
    while (inTime && outstanding > 0) {
        inTime = waitFor(deadline);
    }
    if (outstanding > 0) {
        // Answers that arrived while this thread was not running came in time.
        handleArrived();
    }
    if (Clock::now() - begin >= shortestSilence) {
        leaveSilentOnesAlone(calls, sent, replies);
    }
    return replies;
}

// An application that answered some of its calls is slow, not hung.
void Connection::leaveSilentOnesAlone(const std::vector<Call> &calls, const std::vector<Subscription> &sent,
                                      const std::vector<Reply> &replies) {
    std::map<std::string, bool> isAlive;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (sent[i].slot != nullptr) {
            auto &hasAnswered = isAlive[calls[i].target.bus];
            hasAnswered = hasAnswered || replies[i].isAnswered();
        }
    }
    for (const auto &[name, hasAnswered] : isAlive) {
        if (!hasAnswered) {
            leaveAlone(name);
        }
    }
}

Reply Connection::call(Call call, Deadline deadline) {
    return std::move(callAll({std::move(call)}, deadline).front());
}

void Connection::send(const Call &call) {
    if (isOpen() && !isSilent(call.target.bus)) {
        const auto message = build(call);
        sd_bus_message_set_expect_reply(message.get(), 0);
        sd_bus_send(m_bus.get(), message.get(), nullptr);
        ++m_counters.messages;
    }
}

void Connection::match(const char *rule, Handler handler) {
    m_matches.push_back(subscribe(rule, std::move(handler)));
}

Connection::Subscription Connection::subscribe(const std::string &rule, Handler handler) {
    Subscription subscription{std::make_unique<Handler>(std::move(handler)), nullptr};
    sd_bus_slot *slot = nullptr;
    if (m_bus != nullptr && sd_bus_add_match_async(m_bus.get(), &slot, rule.c_str(), runHandler, nullptr,
                                                   subscription.handler.get()) >= 0) {
        subscription.slot.reset(slot);
    }
    return subscription;
}

void Connection::idle(Deadline until) {
    while (waitFor(until)) {
    }
}

void Connection::leaveAlone(const std::string &name) {
    if (name == busName || isSilent(name) || !isOpen()) {
        return;
    }
    auto ping = sendAsync(calls::method({name, rootPath}, "org.freedesktop.DBus.Peer", "Ping"),
                          [this, name](sd_bus_message *) { m_answering.insert(name); });
    if (ping.slot != nullptr) {
        m_silent.emplace(name, std::move(ping));
    }
}

void Connection::forget(const std::string &name) {
    m_pids.erase(name);
    if (isSilent(name)) {
        m_answering.insert(name);
    }
}

std::vector<Handle> Connection::handles(std::vector<ElementRef> refs, Deadline deadline) {
    std::set<std::string> unknown;
    for (const auto &ref : refs) {
        if (!m_pids.contains(ref.bus)) {
            unknown.insert(ref.bus);
        }
    }
    std::vector<Call> questions;
    std::ranges::transform(unknown, std::back_inserter(questions), calls::processOf);
    const auto replies = callAll(questions, deadline);
    std::size_t i = 0;
    for (const auto &name : unknown) {
        if (const auto pid = replies[i++].as<std::uint32_t>()) {
            m_pids[name] = static_cast<qint32>(*pid);
        }
    }
    std::vector<Handle> handles;
    for (auto &ref : refs) {
        const auto known = m_pids.find(ref.bus);
        handles.push_back({std::move(ref), known != m_pids.end() ? known->second : 0});
    }
    return handles;
}

} // namespace platform::desktop::atspi
