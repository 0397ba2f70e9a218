// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <systemd/sd-bus.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace quillory::test {

/// An element of a fake application.
struct FakeElement {
    std::string parent = {};
    std::vector<std::string> children = {};
    unsigned role = 39;
    std::string name = {};
    std::string text = {};
    std::vector<unsigned> states{25, 30};
    std::map<std::string, std::string> attributes = {};
};

/// A bus of its own with a registry and one application on it, which behaves as the test says: the session bus and the
/// accessibility bus in one. Elements are named "/1", "/2" ...; the application itself is the usual root path.
class FakeAccessibilityBus {
  public:
    static constexpr const char *root = "/org/a11y/atspi/accessible/root";
    /// How the application answers a search for its texts: not at all, with all of them, or with something else.
    enum class Search { none, whole, wrong };
    /// A chance to answer a call in the test's own way: true when it did.
    using Answer = std::function<bool(const std::string &path, const std::string &member, sd_bus_message *reply)>;

    FakeAccessibilityBus();
    ~FakeAccessibilityBus();
    FakeAccessibilityBus(const FakeAccessibilityBus &) = delete;
    FakeAccessibilityBus &operator=(const FakeAccessibilityBus &) = delete;

    std::atomic<Search> search = Search::none;
    std::atomic<const char *> toolkit = "Fake";
    /// While set nothing is answered; then all that has piled up is.
    std::atomic<bool> hangs = false;
    /// The registry starts anew and knows of no registration.
    std::atomic<bool> registryMustRestart = false;
    /// Where a caret was set last.
    std::atomic<int> caret = -1;

    [[nodiscard]] const std::string &address() const { return m_address; }
    /// Adds an element below another and returns its path.
    std::string add(const std::string &parent, FakeElement element);
    void change(const std::string &path, const std::function<void(FakeElement &)> &change);
    [[nodiscard]] FakeElement element(const std::string &path);
    void remove(const std::string &path);
    /// Lists another application before the others, one that never answers.
    void addHungApplication();
    /// Gives an element the focus, with or without telling anybody.
    void focus(const std::string &path, bool isTold = true);
    /// Tells that something about an element has changed, as the application's event of this name, if anybody has
    /// registered for it.
    void tell(const std::string &path, const std::string &event);
    /// Whether an event of this name would be sent.
    [[nodiscard]] bool hearsOf(const std::string &event);
    void setAnswer(Answer answer);
    void setEnabled(bool enabled);
    /// The application leaves the bus.
    void quit();
    [[nodiscard]] int callsOf(const std::string &member);
    /// All of them together.
    [[nodiscard]] int calls();

  private:
    void serve(sd_bus_message_handler_t onCall, const std::stop_token &stop, const std::function<void(sd_bus *)> &begin,
               const std::function<void(sd_bus *)> &work);
    void workAsService(sd_bus *bus);
    void workAsApplication(sd_bus *bus);
    int answerAsService(sd_bus_message *call);
    int answerAsApplication(sd_bus_message *call);
    bool answer(sd_bus_message *call, sd_bus_message *reply);
    bool answerProperty(sd_bus_message *call, const FakeElement &element, sd_bus_message *reply);
    bool appendReferences(sd_bus_message *reply, const std::vector<std::string> &paths) const;
    void find(const std::string &path, bool textsOnly, std::vector<std::string> &found) const;

    struct Event {
        std::string path;
        std::string member;
        const char *detail;
    };

    ChildProcess m_daemon;
    std::string m_address;
    std::recursive_mutex m_mutex;
    std::map<std::string, FakeElement> m_elements;
    std::string m_name;
    std::string m_hungName;
    sd_bus *m_hung = nullptr;
    /// The kinds of events that somebody has registered for.
    std::set<std::string> m_registered;
    std::vector<Event> m_pendingSignals;
    Answer m_answer;
    std::map<std::string, int> m_calls;
    int m_next = 1;
    std::atomic<bool> m_isEnabled = true;
    std::atomic<bool> m_mustTell = false;
    std::atomic<int> m_ready = 0;
    std::jthread m_service;
    std::jthread m_application;
};

} // namespace quillory::test
