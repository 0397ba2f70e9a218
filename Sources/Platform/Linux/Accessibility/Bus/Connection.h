// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Bus/Calls.h"
#include "Platform/Linux/FileDescriptor.h"

#include <atomic>
#include <functional>
#include <map>
#include <set>

namespace platform::desktop::atspi {

/// Ends a thread's waits at once and for good: a flag, and a descriptor to wait on beside others.
class StopSignal {
  public:
    StopSignal();
    void request();
    [[nodiscard]] bool isRequested() const { return m_isRequested; }
    [[nodiscard]] int descriptor() const { return m_event.get(); }

  private:
    FileDescriptor m_event;
    std::atomic<bool> m_isRequested = false;
};

/// Waits until a connection has something to do, a descriptor can be read, or the time has come.
void waitForActivity(const std::vector<sd_bus *> &buses, int descriptor, Deadline until);

/// The address of the session bus, from the environment; empty where that tells of none.
[[nodiscard]] std::string sessionBusAddress();

/// A connection to the accessibility bus that asks many questions at once and waits for all the answers together.
/// An application that missed a deadline is left alone: it gets one last call, a ping, and until it answers that, every
/// further call to it fails at once. Belongs to one thread.
class Connection {
  public:
    using Handler = std::function<void(sd_bus_message *)>;

    /// Hears signals or an answer for as long as it lives, which must not be longer than the connection.
    struct Subscription {
        std::unique_ptr<Handler> handler;
        SlotPtr slot;
    };

    /// Connects to a bus address; isOpen() and the answers show whether that worked. stop ends every wait; from then on
    /// the connection counts as closed.
    Connection(const std::string &address, const StopSignal &stop);
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    [[nodiscard]] bool isOpen() const;
    /// To wait on its activity together with others.
    [[nodiscard]] sd_bus *bus() const { return m_bus.get(); }
    /// Handles a bounded number of the messages that have arrived, without waiting; false once the connection is lost.
    bool process();

    /// Sends all the calls, then waits for their answers until the deadline. Gives one answer per call, in their order;
    /// an empty one where nothing came. Nothing is sent after the deadline.
    std::vector<Reply> callAll(const std::vector<Call> &calls, Deadline deadline);
    Reply call(Call call, Deadline deadline);
    /// Sends a call whose answer nobody waits for.
    void send(const Call &call);
    /// Calls the handler for every signal that matches the rule, while process() or callAll() runs.
    void match(const char *rule, Handler handler);
    /// The same, until the subscription ends.
    [[nodiscard]] Subscription subscribe(const std::string &rule, Handler handler);
    /// Handles what arrives until the time given.
    void idle(Deadline until);

    /// Whether an application is left alone at present.
    [[nodiscard]] bool isSilent(const std::string &name) const { return m_silent.contains(name); }
    /// The elements with their processes, which the bus itself is asked for once per name.
    std::vector<Handle> handles(std::vector<ElementRef> refs, Deadline deadline);
    /// How many messages were sent and batches awaited so far, for measurements.
    struct Counters {
        std::uint64_t messages = 0;
        std::uint64_t roundTrips = 0;
    };
    [[nodiscard]] Counters counters() const { return m_counters; }

  private:
    bool handleArrived();
    bool waitFor(Deadline deadline);
    /// Sends a call for whose answer there is no time limit. Without a slot where that failed.
    Subscription sendAsync(const Call &call, Handler handler);
    void leaveSilentOnesAlone(const std::vector<Call> &calls, const std::vector<Subscription> &sent,
                              const std::vector<Reply> &replies);
    void leaveAlone(const std::string &name);
    void forget(const std::string &name);
    [[nodiscard]] MessagePtr build(const Call &call) const;

    const StopSignal &m_stop;
    BusPtr m_bus;
    std::vector<Subscription> m_matches;
    /// The pings of the applications that are left alone.
    std::map<std::string, Subscription, std::less<>> m_silent;
    std::set<std::string, std::less<>> m_answering;
    std::map<std::string, qint32, std::less<>> m_pids;
    Counters m_counters;
};

} // namespace platform::desktop::atspi
