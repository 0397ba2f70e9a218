// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RealDesktop/ChildProcess.h"

#include <QString>

#include <systemd/sd-bus.h>

#include <array>
#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace quillory::test {

using Lock = std::scoped_lock<std::recursive_mutex>;

inline sd_bus *connectTo(const std::string &address) {
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0) {
        throw std::runtime_error("the private bus cannot be reached");
    }
    return bus;
}

inline std::string nameOf(sd_bus *bus) {
    const char *name = nullptr;
    sd_bus_get_unique_name(bus, &name);
    return name;
}

inline bool appendStates(sd_bus_message *message, const std::vector<unsigned> &states) {
    std::array<std::uint32_t, 2> words{};
    for (const unsigned state : states) {
        words.at(state / 32) |= 1U << (state % 32);
    }
    return sd_bus_message_append_array(message, 'u', words.data(), sizeof words) >= 0;
}

inline bool appendAttributes(sd_bus_message *message, const std::map<std::string, std::string> &attributes) {
    sd_bus_message_open_container(message, 'a', "{ss}");
    for (const auto &[key, value] : attributes) {
        sd_bus_message_append(message, "{ss}", key.c_str(), value.c_str());
    }
    return sd_bus_message_close_container(message) >= 0;
}

// Whether a search asks for a role (the word with that of static texts is set) or for any element.
inline bool asksForTexts(sd_bus_message *call) {
    const void *words = nullptr;
    std::size_t size = 0;
    sd_bus_message_enter_container(call, 'r', "aiia{ss}iaiiasib");
    sd_bus_message_skip(call, "aiia{ss}i");
    sd_bus_message_read_array(call, 'i', &words, &size);
    return size == 4 * sizeof(std::uint32_t) && static_cast<const std::uint32_t *>(words)[3] != 0;
}

inline bool isRegistered(const std::set<std::string> &registered, const std::string &event) {
    static const std::map<std::string, std::string> names{{"ChildrenChanged", "object:children-changed"},
                                                          {"TextChanged", "object:text-changed"},
                                                          {"PropertyChange", "object:property-change:accessible-name"},
                                                          {"StateChanged", "object:state-changed:focused"}};
    return registered.contains(names.at(event));
}

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

/// A private bus with a registry and one application on it, which behaves as the test says: session bus and
/// accessibility bus in one. Elements are named "/1", "/2" ...; the application itself has the usual root path.
class FakeAccessibilityBus {
  public:
    static constexpr const char *root = "/org/a11y/atspi/accessible/root";
    /// How the application answers a search for its texts: not at all, with all of them, or with something else.
    enum class Search { none, whole, wrong };
    /// Answers a call in the test's own way; false leaves it to the fake.
    using Answer = std::function<bool(const std::string &path, const std::string &member, sd_bus_message *reply)>;

    FakeAccessibilityBus() {
        m_address = m_daemon.line();
        m_elements[root] = FakeElement{.role = 75, .name = "fake"};
        m_service = connectTo(m_address);
        m_application = connectTo(m_address);
        m_name = nameOf(m_application);
        sd_bus_add_filter(m_service, nullptr, answering<&FakeAccessibilityBus::answerAsService>, this);
        sd_bus_add_filter(m_application, nullptr, answering<&FakeAccessibilityBus::answerAsApplication>, this);
        sd_bus_request_name(m_service, "org.a11y.Bus", 0);
        sd_bus_request_name(m_service, registry, 0);
        m_thread = std::jthread([this](const std::stop_token &stop) { serve(stop); });
    }
    ~FakeAccessibilityBus() {
        m_thread.request_stop();
        m_thread.join();
        for (sd_bus *bus : {m_service, m_application, m_hung}) {
            sd_bus_flush_close_unref(bus);
        }
    }
    FakeAccessibilityBus(const FakeAccessibilityBus &) = delete;
    FakeAccessibilityBus &operator=(const FakeAccessibilityBus &) = delete;

    std::atomic<Search> search = Search::none;
    std::atomic<const char *> toolkit = "Fake";
    /// While set the application answers nothing; afterwards it answers all that has piled up.
    std::atomic<bool> hangs = false;
    /// Makes the registry start anew; it then knows of no registration.
    std::atomic<bool> registryMustRestart = false;

    [[nodiscard]] const std::string &address() const { return m_address; }
    /// Adds an element below another and returns its path.
    std::string add(const std::string &parent, FakeElement element) {
        const Lock lock(m_mutex);
        std::string path = "/" + std::to_string(m_next++);
        element.parent = parent;
        m_elements[path] = std::move(element);
        m_elements[parent].children.push_back(path);
        return path;
    }
    void change(const std::string &path, const std::function<void(FakeElement &)> &change) {
        const Lock lock(m_mutex);
        change(m_elements[path]);
    }
    [[nodiscard]] FakeElement element(const std::string &path) {
        const Lock lock(m_mutex);
        return m_elements[path];
    }
    void remove(const std::string &path) {
        const Lock lock(m_mutex);
        std::erase(m_elements[m_elements[path].parent].children, path);
        m_elements.erase(path);
    }
    /// Lists an application that never answers before the other one.
    void addHungApplication() {
        const Lock lock(m_mutex);
        m_hung = connectTo(m_address);
    }
    /// Gives an element the focus, with or without an event.
    void focus(const std::string &path, bool isTold = true) {
        constexpr unsigned focused = 12;
        const Lock lock(m_mutex);
        for (auto &[other, element] : m_elements) {
            std::erase(element.states, focused);
        }
        m_elements[path].states.push_back(focused);
        if (isTold) {
            m_pendingSignals.emplace_back(path, "StateChanged", "focused");
        }
    }
    /// Sends the event of this name about an element, if anybody has registered for it.
    void tell(const std::string &path, const std::string &event) {
        const Lock lock(m_mutex);
        m_pendingSignals.emplace_back(path, event, event == "PropertyChange" ? "accessible-name" : "add");
    }
    /// Whether an event of this name would be sent.
    [[nodiscard]] bool hearsOf(const std::string &event) {
        const Lock lock(m_mutex);
        return !registryMustRestart && isRegistered(m_registered, event);
    }
    void setAnswer(Answer answer) {
        const Lock lock(m_mutex);
        m_answer = std::move(answer);
    }
    /// The application leaves the bus.
    void quit() {
        const Lock lock(m_mutex);
        m_application = sd_bus_flush_close_unref(m_application);
        m_name.clear();
    }
    /// How often a method of the application was called; without a name, any method.
    [[nodiscard]] int callsOf(const std::string &member = {}) {
        const Lock lock(m_mutex);
        return m_calls[member];
    }

  private:
    static constexpr const char *registry = "org.a11y.atspi.Registry";

    template <auto answer> static int answering(sd_bus_message *call, void *self, sd_bus_error *) {
        return sd_bus_message_is_method_call(call, nullptr, nullptr) > 0
                   ? (static_cast<FakeAccessibilityBus *>(self)->*answer)(call)
                   : 0;
    }
    void serve(const std::stop_token &stop) {
        while (!stop.stop_requested()) {
            if (!workAsService() && !workAsApplication()) {
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        }
    }
    // The session's accessibility service and the registry. Whether there was something to do.
    bool workAsService() {
        const Lock lock(m_mutex);
        if (registryMustRestart.exchange(false)) {
            sd_bus_release_name(m_service, registry);
            m_registered.clear();
            sd_bus_request_name(m_service, registry, 0);
        }
        return sd_bus_process(m_service, nullptr) > 0;
    }
    bool workAsApplication() {
        const Lock lock(m_mutex);
        if (hangs || m_application == nullptr) {
            return false;
        }
        for (const auto &[path, member, detail] : std::exchange(m_pendingSignals, {})) {
            if (isRegistered(m_registered, member)) {
                sd_bus_emit_signal(m_application, path.c_str(), "org.a11y.atspi.Event.Object", member.c_str(),
                                   "siiva{sv}", detail, 1, 0, "i", 0, 0);
            }
        }
        return sd_bus_process(m_application, nullptr) > 0;
    }
    int answerAsService(sd_bus_message *call) {
        const std::string_view member = sd_bus_message_get_member(call);
        if (const char *event = nullptr; member == "RegisterEvent" && sd_bus_message_read(call, "s", &event) > 0) {
            m_registered.insert(event);
        } else if (member == "DeregisterEvent" && sd_bus_message_read(call, "s", &event) > 0) {
            m_registered.erase(event);
        } else if (member == "GetAddress") {
            return sd_bus_reply_method_return(call, "s", m_address.c_str());
        } else if (member == "GetChildren" && m_hung != nullptr) {
            return sd_bus_reply_method_return(call, "a(so)", 2, nameOf(m_hung).c_str(), root, m_name.c_str(), root);
        } else if (member == "GetChildren" && !m_name.empty()) {
            return sd_bus_reply_method_return(call, "a(so)", 1, m_name.c_str(), root);
        } else if (member == "Get") { // whether accessibility is on
            return sd_bus_reply_method_return(call, "v", "b", 1);
        }
        return sd_bus_reply_method_return(call, nullptr);
    }
    int answerAsApplication(sd_bus_message *call) {
        if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Peer", nullptr) > 0) {
            return 0;
        }
        const std::string member = sd_bus_message_get_member(call);
        ++m_calls[member];
        ++m_calls[{}];
        sd_bus_message *reply = nullptr;
        sd_bus_message_new_method_return(call, &reply);
        if ((m_answer && m_answer(sd_bus_message_get_path(call), member, reply)) || answer(call, reply)) {
            sd_bus_send(nullptr, reply, nullptr);
        } else {
            sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "not known here");
        }
        sd_bus_message_unref(reply);
        return 1;
    }
    bool answer(sd_bus_message *call, sd_bus_message *reply) {
        const std::string path = sd_bus_message_get_path(call);
        const std::string_view member = sd_bus_message_get_member(call);
        const auto say = [reply](const char *types, auto... values) {
            return sd_bus_message_append(reply, types, values...) >= 0;
        };
        if (member == "GetMatches" && search == Search::wrong) {
            return say("as", 1, "nothing");
        }
        if (member == "GetMatches" && search == Search::whole) {
            std::vector<std::string> found;
            find(path, asksForTexts(call), found);
            return appendReferences(reply, found);
        }
        const auto found = m_elements.find(path);
        if (found == m_elements.end()) {
            return false;
        }
        const FakeElement &element = found->second;
        const std::map<std::string_view, std::function<bool()>> answers{
            {"GetRole", [&] { return say("u", element.role); }},
            {"GetState", [&] { return appendStates(reply, element.states); }},
            {"GetChildren", [&] { return appendReferences(reply, element.children); }},
            {"GetInterfaces", [&] { return say("as", 2, "org.a11y.atspi.Text", "org.a11y.atspi.EditableText"); }},
            {"GetAttributes", [&] { return appendAttributes(reply, element.attributes); }},
            {"GetText", [&] { return say("s", element.text.c_str()); }},
            {"GetExtents", [&] { return say("(iiii)", 10, 20, 100, 30); }},
            {"Get", [&] { return answerProperty(call, element, reply); }}};
        const auto known = answers.find(member);
        return known != answers.end() && known->second();
    }
    bool answerProperty(sd_bus_message *call, const FakeElement &element, sd_bus_message *reply) {
        const char *interface = nullptr;
        const char *name = nullptr;
        sd_bus_message_read(call, "ss", &interface, &name);
        const std::string_view property = name;
        if (property == "Parent") {
            const bool hasParent = !element.parent.empty();
            return sd_bus_message_append(reply, "v", "(so)", hasParent ? m_name.c_str() : "",
                                         hasParent ? element.parent.c_str() : "/org/a11y/atspi/null") >= 0;
        }
        if (property == "Name" || property == "ToolkitName") {
            return sd_bus_message_append(reply, "v", "s", property == "Name" ? element.name.c_str() : toolkit.load()) >=
                   0;
        }
        const auto count = property == "ChildCount" ? std::ssize(element.children)
                                                    : QString::fromStdString(element.text).toUcs4().size();
        return sd_bus_message_append(reply, "v", "i", static_cast<int>(count)) >= 0;
    }
    bool appendReferences(sd_bus_message *reply, const std::vector<std::string> &paths) const {
        sd_bus_message_open_container(reply, 'a', "(so)");
        for (const auto &path : paths) {
            sd_bus_message_append(reply, "(so)", m_name.c_str(), path.c_str());
        }
        return sd_bus_message_close_container(reply) >= 0;
    }
    // The texts, or all that is below an element, in the order of a walk.
    void find(const std::string &path, bool textsOnly, std::vector<std::string> &found) const {
        constexpr unsigned staticText = 116;
        for (const auto &child : m_elements.at(path).children) {
            if (!textsOnly || m_elements.at(child).role == staticText) {
                found.push_back(child);
            }
            find(child, textsOnly, found);
        }
    }

    ChildProcess m_daemon{{"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}, Output::read};
    std::string m_address;
    std::recursive_mutex m_mutex;
    std::map<std::string, FakeElement> m_elements;
    std::string m_name;
    sd_bus *m_service = nullptr;
    sd_bus *m_application = nullptr;
    sd_bus *m_hung = nullptr;
    /// The kinds of events that somebody has registered for.
    std::set<std::string> m_registered;
    /// Path, event and detail of each.
    std::vector<std::tuple<std::string, std::string, const char *>> m_pendingSignals;
    Answer m_answer;
    std::map<std::string, int> m_calls;
    int m_next = 1;
    std::jthread m_thread;
};

} // namespace quillory::test
