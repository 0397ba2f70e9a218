// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "FakeAccessibilityBus.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace quillory::test {

namespace {

constexpr const char *nullPath = "/org/a11y/atspi/null";
constexpr std::uint64_t pollMicroseconds = 5'000;

sd_bus *connectTo(const std::string &address) {
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0) {
        throw std::runtime_error("the private bus cannot be reached");
    }
    return bus;
}

void appendStates(sd_bus_message *message, const std::vector<unsigned> &states) {
    std::array<std::uint32_t, 2> words{};
    for (const unsigned state : states) {
        words.at(state / 32) |= 1U << (state % 32);
    }
    sd_bus_message_append_array(message, 'u', words.data(), sizeof words);
}

void appendStrings(sd_bus_message *message, const std::vector<std::string> &strings) {
    sd_bus_message_open_container(message, 'a', "s");
    for (const auto &string : strings) {
        sd_bus_message_append(message, "s", string.c_str());
    }
    sd_bus_message_close_container(message);
}

// Whether a search asks for a role (the word with that of static texts is set) or for any element.
bool asksForTexts(sd_bus_message *call) {
    const void *words = nullptr;
    std::size_t size = 0;
    sd_bus_message_enter_container(call, 'r', "aiia{ss}iaiiasib");
    sd_bus_message_skip(call, "aiia{ss}i");
    sd_bus_message_read_array(call, 'i', &words, &size);
    return size == 4 * sizeof(std::uint32_t) && static_cast<const std::uint32_t *>(words)[3] != 0;
}

int characters(const std::string &utf8) {
    return static_cast<int>(std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace

FakeAccessibilityBus::FakeAccessibilityBus() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    m_daemon = ChildProcess(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=" + std::to_string(ends[1])},
        Output::dropped, ends[1]);
    close(ends[1]);
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) {
        m_address += c;
    }
    close(ends[0]);
    m_elements[root] = FakeElement{.role = 75, .name = "fake"};
    m_service = std::jthread([this](const std::stop_token &stop) { serveService(stop); });
    m_application = std::jthread([this](const std::stop_token &stop) { serve(stop); });
    waitUntil([this] { return m_ready == 2; });
}

FakeAccessibilityBus::~FakeAccessibilityBus() {
    sd_bus_close_unref(m_hung);
}

std::string FakeAccessibilityBus::add(const std::string &parent, FakeElement element) {
    const std::scoped_lock lock(m_mutex);
    std::string path = "/" + std::to_string(m_next++);
    element.parent = parent;
    m_elements[path] = std::move(element);
    m_elements[parent].children.push_back(path);
    return path;
}

void FakeAccessibilityBus::change(const std::string &path, const std::function<void(FakeElement &)> &change) {
    const std::scoped_lock lock(m_mutex);
    change(m_elements[path]);
}

FakeElement FakeAccessibilityBus::element(const std::string &path) {
    const std::scoped_lock lock(m_mutex);
    return m_elements[path];
}

void FakeAccessibilityBus::remove(const std::string &path) {
    const std::scoped_lock lock(m_mutex);
    std::erase(m_elements[m_elements[path].parent].children, path);
    m_elements.erase(path);
}

void FakeAccessibilityBus::addHungApplication() {
    const char *name = nullptr;
    m_hung = connectTo(m_address);
    sd_bus_get_unique_name(m_hung, &name);
    const std::scoped_lock lock(m_mutex);
    m_hungName = name;
}

void FakeAccessibilityBus::focus(const std::string &path, bool tell) {
    constexpr unsigned focused = 12;
    const std::scoped_lock lock(m_mutex);
    for (auto &[other, element] : m_elements) {
        std::erase(element.states, focused);
    }
    m_elements[path].states.push_back(focused);
    if (tell) {
        m_pendingSignals.push_back({path, "StateChanged", "focused"});
    }
}

void FakeAccessibilityBus::tell(const std::string &path, const std::string &event) {
    const std::scoped_lock lock(m_mutex);
    m_pendingSignals.push_back({path, event, event == "PropertyChange" ? "accessible-name" : "add"});
}

void FakeAccessibilityBus::setToolkit(const char *toolkit) {
    const std::scoped_lock lock(m_mutex);
    m_toolkit = toolkit;
}

void FakeAccessibilityBus::setAnswer(Answer answer) {
    const std::scoped_lock lock(m_mutex);
    m_answer = std::move(answer);
}

void FakeAccessibilityBus::setEnabled(bool enabled) {
    m_isEnabled = enabled;
    m_mustTell = true;
}

void FakeAccessibilityBus::quit() {
    m_application.request_stop();
    m_application.join();
}

int FakeAccessibilityBus::callsOf(const std::string &member) {
    const std::scoped_lock lock(m_mutex);
    return m_calls[member];
}

int FakeAccessibilityBus::calls() {
    const std::scoped_lock lock(m_mutex);
    int sum = 0;
    for (const auto &[member, count] : m_calls) {
        sum += count;
    }
    return sum;
}

bool FakeAccessibilityBus::hearsOf(const std::string &event) {
    const std::scoped_lock lock(m_mutex);
    return !m_mustRestart && isRegistered(event);
}

bool FakeAccessibilityBus::isRegistered(const std::string &member) const {
    static const std::map<std::string, std::string> events{{"ChildrenChanged", "object:children-changed"},
                                                           {"TextChanged", "object:text-changed"},
                                                           {"PropertyChange", "object:property-change:accessible-name"},
                                                           {"StateChanged", "object:state-changed:focused"}};
    return m_registered.contains(events.at(member));
}

// The session's accessibility service and the registry.
void FakeAccessibilityBus::serveService(const std::stop_token &stop) {
    sd_bus *bus = connectTo(m_address);
    sd_bus_add_filter(bus, nullptr, onServiceCall, this);
    sd_bus_request_name(bus, "org.a11y.Bus", 0);
    sd_bus_request_name(bus, "org.a11y.atspi.Registry", 0);
    ++m_ready;
    while (!stop.stop_requested()) {
        if (m_mustTell.exchange(false)) {
            sd_bus_emit_signal(bus, "/org/a11y/bus", "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                               "org.a11y.Status", 1, "IsEnabled", "b", m_isEnabled ? 1 : 0, 0);
        }
        if (m_mustRestart.exchange(false)) {
            sd_bus_release_name(bus, "org.a11y.atspi.Registry");
            const std::scoped_lock lock(m_mutex);
            m_registered.clear();
            sd_bus_request_name(bus, "org.a11y.atspi.Registry", 0);
        }
        if (sd_bus_process(bus, nullptr) == 0) {
            sd_bus_wait(bus, pollMicroseconds);
        }
    }
    sd_bus_flush_close_unref(bus);
}

int FakeAccessibilityBus::onServiceCall(sd_bus_message *call, void *self, sd_bus_error *) {
    auto &fake = *static_cast<FakeAccessibilityBus *>(self);
    if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0) {
        return 0;
    }
    const std::scoped_lock lock(fake.m_mutex);
    const std::string_view member = sd_bus_message_get_member(call);
    if (const char *event = nullptr; member == "RegisterEvent" || member == "DeregisterEvent") {
        sd_bus_message_read(call, "s", &event);
        if (member == "RegisterEvent") {
            fake.m_registered.insert(event);
        } else {
            fake.m_registered.erase(event);
        }
    }
    if (member == "GetAddress") {
        return sd_bus_reply_method_return(call, "s", fake.m_address.c_str());
    }
    if (member == "GetChildren" && !fake.m_hungName.empty()) {
        return sd_bus_reply_method_return(call, "a(so)", 2, fake.m_hungName.c_str(), root, fake.m_name.c_str(), root);
    }
    if (member == "GetChildren" && !fake.m_name.empty()) {
        return sd_bus_reply_method_return(call, "a(so)", 1, fake.m_name.c_str(), root);
    }
    if (member == "Set") {
        fake.setEnabled(true);
        return sd_bus_reply_method_return(call, nullptr);
    }
    if (member == "Get") {
        return sd_bus_reply_method_return(call, "v", "b", fake.m_isEnabled ? 1 : 0);
    }
    return sd_bus_reply_method_return(call, nullptr);
}

void FakeAccessibilityBus::serve(const std::stop_token &stop) {
    sd_bus *bus = connectTo(m_address);
    sd_bus_add_filter(bus, nullptr, onCall, this);
    const char *name = nullptr;
    sd_bus_get_unique_name(bus, &name);
    {
        const std::scoped_lock lock(m_mutex);
        m_name = name;
    }
    ++m_ready;
    while (!stop.stop_requested()) {
        if (m_hangs) {
            sleepBriefly();
            continue;
        }
        {
            const std::scoped_lock lock(m_mutex);
            for (const auto &event : std::exchange(m_pendingSignals, {})) {
                if (!isRegistered(event.member)) {
                    continue;
                }
                sd_bus_emit_signal(bus, event.path.c_str(), "org.a11y.atspi.Event.Object", event.member.c_str(),
                                   "siiva{sv}", event.detail, 1, 0, "i", 0, 0);
            }
        }
        if (sd_bus_process(bus, nullptr) == 0) {
            sd_bus_wait(bus, pollMicroseconds);
        }
    }
    {
        const std::scoped_lock lock(m_mutex);
        m_name.clear();
    }
    sd_bus_flush_close_unref(bus);
}

int FakeAccessibilityBus::onCall(sd_bus_message *call, void *self, sd_bus_error *) {
    auto &fake = *static_cast<FakeAccessibilityBus *>(self);
    if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0 ||
        sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Peer", nullptr) > 0) {
        return 0;
    }
    const std::scoped_lock lock(fake.m_mutex);
    ++fake.m_calls[sd_bus_message_get_member(call)];
    sd_bus_message *reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    const bool isOwn =
        fake.m_answer && fake.m_answer(sd_bus_message_get_path(call), sd_bus_message_get_member(call), reply);
    if (isOwn || fake.answer(call, reply)) {
        sd_bus_send(nullptr, reply, nullptr);
    } else {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "not known here");
    }
    sd_bus_message_unref(reply);
    return 1;
}

bool FakeAccessibilityBus::answer(sd_bus_message *call, sd_bus_message *reply) {
    const std::string_view member = sd_bus_message_get_member(call);
    if (member == "GetMatches" && m_search == Search::wrong) {
        return sd_bus_message_append(reply, "as", 1, "nothing") >= 0;
    }
    if (member == "GetMatches" && m_search != Search::none) {
        std::vector<std::string> found;
        search(sd_bus_message_get_path(call), asksForTexts(call), found);
        appendReferences(reply, found);
        return true;
    }
    const auto found = m_elements.find(sd_bus_message_get_path(call));
    if (found == m_elements.end()) {
        return false;
    }
    const auto &element = found->second;
    if (member == "GetRole") {
        return sd_bus_message_append(reply, "u", element.role) >= 0;
    }
    if (member == "GetState") {
        appendStates(reply, element.states);
        return true;
    }
    if (member == "GetChildren") {
        appendReferences(reply, element.children);
        return true;
    }
    if (member == "GetInterfaces") {
        appendStrings(reply, element.interfaces);
        return true;
    }
    if (member == "GetAttributes") {
        sd_bus_message_open_container(reply, 'a', "{ss}");
        for (const auto &[key, value] : element.attributes) {
            sd_bus_message_append(reply, "{ss}", key.c_str(), value.c_str());
        }
        return sd_bus_message_close_container(reply) >= 0;
    }
    if (member == "GetText") {
        return sd_bus_message_append(reply, "s", element.text.c_str()) >= 0;
    }
    if (member == "GetExtents") {
        return sd_bus_message_append(reply, "(iiii)", element.x, 20, 100, 30) >= 0;
    }
    if (member == "SetTextContents") {
        const char *text = nullptr;
        sd_bus_message_read(call, "s", &text);
        found->second.text = text;
        return sd_bus_message_append(reply, "b", 1) >= 0;
    }
    if (member == "SetCaretOffset") {
        int offset = 0;
        sd_bus_message_read(call, "i", &offset);
        m_caret = offset;
        return sd_bus_message_append(reply, "b", 1) >= 0;
    }
    if (member == "Get") {
        answerProperty(call, element, reply);
        return true;
    }
    return false;
}

void FakeAccessibilityBus::answerProperty(sd_bus_message *call, const FakeElement &element, sd_bus_message *reply) {
    const char *interface = nullptr;
    const char *name = nullptr;
    sd_bus_message_read(call, "ss", &interface, &name);
    const std::string_view property = name;
    if (property == "Parent") {
        const bool hasParent = !element.parent.empty();
        sd_bus_message_append(reply, "v", "(so)", hasParent ? m_name.c_str() : "",
                              hasParent ? element.parent.c_str() : nullPath);
    } else if (property == "Name") {
        sd_bus_message_append(reply, "v", "s", element.name.c_str());
    } else if (property == "ToolkitName") {
        sd_bus_message_append(reply, "v", "s", m_toolkit.c_str());
    } else if (property == "ChildCount") {
        sd_bus_message_append(reply, "v", "i", static_cast<int>(element.children.size()));
    } else {
        sd_bus_message_append(reply, "v", "i", characters(element.text));
    }
}

void FakeAccessibilityBus::appendReferences(sd_bus_message *reply, const std::vector<std::string> &paths) const {
    sd_bus_message_open_container(reply, 'a', "(so)");
    for (const auto &path : paths) {
        sd_bus_message_append(reply, "(so)", m_name.c_str(), path.c_str());
    }
    sd_bus_message_close_container(reply);
}

// The texts, or all that is below an element, in the order of a walk.
void FakeAccessibilityBus::search(const std::string &path, bool textsOnly, std::vector<std::string> &found) const {
    constexpr unsigned staticText = 116;
    for (const auto &child : m_elements.at(path).children) {
        if (!textsOnly || m_elements.at(child).role == staticText) {
            found.push_back(child);
        }
        search(child, textsOnly, found);
    }
}

} // namespace quillory::test
