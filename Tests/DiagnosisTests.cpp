// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/Diagnosis.h"
#include "Terminal.h"

using namespace Qt::StringLiterals;

namespace quillory {

namespace {

using platform::ApplicationFacts;
using platform::DesktopFacts;
using platform::PageFacts;
using testing::HasSubstr;
using State = Finding::State;

QString utf16(const char *utf8) {
    return QString::fromUtf8(utf8);
}

ApplicationFacts program(const char *bundle, std::vector<PageFacts> pages, bool isWhole = true) {
    ApplicationFacts facts;
    facts.name = facts.bundleIdentifier = utf16(bundle);
    facts.isOnBus = true;
    facts.hasX11Window = true;
    facts.tree = {.pages = std::move(pages), .isWhole = isWhole};
    return facts;
}

/// A page of 1000 by 800 with a field at that height.
PageFacts page(const char *host, const char *role, std::optional<double> fieldAt) {
    const auto frame = fieldAt ? std::optional(platform::Rect{300, *fieldAt, 600, 40}) : std::nullopt;
    return {utf16(host), platform::Rect{0, 100, 1000, 800}, {{utf16(role), frame}}};
}
const PageFacts chat = page("web.whatsapp.com", "AXTextArea", 820);
const PageFacts otherPage = page("example.com", "AXTextArea", 820);

struct Diagnosis : testing::Test {
    DesktopFacts desktop;
    ProgramFacts own;

    void SetUp() override {
        desktop = {};
        own = {};
        desktop.session = platform::SessionType::x11;
        desktop.hasDisplay = desktop.hasSessionBus = desktop.hasAccessibilityBus = true;
        desktop.windowManager = u"Openbox"_s;
        desktop.isAccessibilityEnabled = desktop.isAccessibilityKept = true;
        desktop.applications = {program("org.chromium.Chromium", {chat})};
        desktop.hasStatusNotifier = true;
        desktop.isRunning = true;
        desktop.canGrabTab = desktop.canGrabEscape = true;
        own.hasKey = own.isKeyKept = true;
        own.serviceHost = u"service.example"_s;
    }
    Finding of(const char *check) const {
        for (const Finding &finding : diagnose(desktop, own)) {
            if (finding.check == utf16(check)) {
                return finding;
            }
        }
        return {};
    }
    bool works() const { return canWork(diagnose(desktop, own)); }
};

TEST_F(Diagnosis, TellsWhatStandsInTheWayFromWhatIsWorthKnowing) {
    struct Case {
        const char *check;
        std::function<void(Diagnosis &)> change;
        State state;
        const char *says;
        Remedy remedy = Remedy::none;
    };
    const Case cases[]{
        {"session", [](auto &d) { d.desktop.hasDisplay = false; }, State::problem, "no X display"},
        {"session", [](auto &d) { d.desktop.windowManager.clear(); }, State::note, "no window manager"},
        {"session", [](auto &d) { d.desktop.session = platform::SessionType::wayland; }, State::note, "XWayland"},
        {"accessibility-bus", [](auto &d) { d.desktop.hasAccessibilityBus = false; }, State::problem, "not answer"},
        {"accessibility", [](auto &d) { d.desktop.isAccessibilityEnabled = false; }, State::problem, "switched off",
         Remedy::enableAccessibility},
        {"accessibility-kept", [](auto &d) { d.desktop.isAccessibilityKept = false; }, State::note, "off again",
         Remedy::enableAccessibility},
        {"accessibility-kept", [](auto &d) { d.desktop.isAccessibilityKept.reset(); }, State::note, "cannot keep"},
        {"keys", [](auto &d) { d.desktop.canGrabTab = false; }, State::problem, "taken Tab"},
        {"keys", [](auto &d) { d.desktop.canGrabEscape.reset(); }, State::problem, "cannot be tested"},
        {"tray", [](auto &d) { d.desktop.hasStatusNotifier = false; }, State::note, "not found"},
        {"key", [](auto &d) { d.own.hasKey = d.own.isKeyKept = false; }, State::problem, "not set", Remedy::enterKey},
        {"key", [](auto &d) { d.own.hasKey = false; }, State::problem, "is locked"},
        {"key", [](auto &d) { d.own.keyFault = u"broken"_s; }, State::problem, "broken", Remedy::enterKey},
        {"service", [](auto &d) { d.own.serviceFault = u"unreachable"_s; }, State::problem, "unreachable"},
        {"suggestions", [](auto &d) { d.own.areSuggestionsOn = false; }, State::problem, "switched off"},
        {"running", [](auto &d) { d.desktop.isRunning = false; }, State::note, "not running", Remedy::start},
        {"browser", [](auto &d) { d.desktop.applications.clear(); }, State::note, "not running"},
    };
    EXPECT_TRUE(works());
    for (const auto &[check, change, state, says, remedy] : cases) {
        SetUp();
        change(*this);
        const Finding finding = of(check);
        EXPECT_EQ(finding.state, state) << check;
        EXPECT_THAT(finding.found.toStdString(), HasSubstr(says));
        EXPECT_EQ(finding.remedy, remedy) << says;
        EXPECT_EQ(works(), state != State::problem) << says;
    }
    SetUp();
    desktop.isAccessibilityKept = desktop.hasAccessibilityBus = false;
    EXPECT_EQ(of("accessibility-kept").advice, QString()) << "nothing can be fixed without the bus";
}

TEST_F(Diagnosis, JudgesBrowsersByWhatTheirTreesShow) {
    ApplicationFacts unlisted = program("org.mozilla.firefox", {});
    unlisted.isOnBus = false;
    unlisted.tree.reset();
    ApplicationFacts hung = program("org.mozilla.firefox", {});
    hung.tree.reset();
    const std::tuple<ApplicationFacts, State, const char *> cases[]{
        {program("org.chromium.Chromium", {otherPage, chat}), State::good, "its message box were"},
        {program("org.chromium.Chromium", {chat}, false), State::good, "its message box were"},
        {program("org.chromium.Chromium", {page("web.whatsapp.com", "AXTextField", {})}), State::good, "its message"},
        {program("org.chromium.Chromium", {page("web.whatsapp.com", "AXTextArea", 140)}), State::note,
         "no message box"},
        {program("org.chromium.Chromium", {page("web.whatsapp.com", "AXSearchField", 820)}), State::note, "no message"},
        {program("org.chromium.Chromium", {}, false), State::note, "too slowly"},
        {program("org.chromium.Chromium", {otherPage}), State::note, "none of them is WhatsApp"},
        {program("net.whatsapp.zapzap", {page("", "AXTextArea", 820)}), State::good, "its message box were"},
        {program("org.chromium.Chromium", {}), State::problem, "shows no page"},
        {unlisted, State::problem, "not on the accessibility bus"},
        {hung, State::problem, "does not answer"},
    };
    for (const auto &[facts, state, says] : cases) {
        desktop.applications = {facts};
        EXPECT_EQ(of("browser").state, state) << says;
        EXPECT_THAT(of("browser").found.toStdString(), HasSubstr(says));
        EXPECT_EQ(works(), state != State::problem) << says;
        desktop.applications = {facts, program("org.chromium.Chromium", {chat})};
        EXPECT_TRUE(works()) << says;
    }
    desktop.session = platform::SessionType::wayland;
    ApplicationFacts native = program("org.mozilla.firefox", {chat});
    native.hasX11Window = false;
    desktop.applications = {native};
    EXPECT_THAT(of("browser").advice.toStdString(), HasSubstr("MOZ_ENABLE_WAYLAND=0 firefox"));
    EXPECT_FALSE(works());
}

/// Commands on a desktop whose accessibility is off until it is switched on.
struct SetupCommands : Diagnosis, platform::DesktopDoctor {
    test::SimulatedDesktop simulated;
    test::Terminal terminal{simulated};

    void SetUp() override {
        Diagnosis::SetUp();
        desktop.isAccessibilityEnabled = false;
        simulated.urlSession.onRequest([](test::SimulatedExchange &exchange) { exchange.answer({}); });
        terminal.services.doctor = this;
        terminal.services.setUpInWindow = [] { return std::nullopt; };
    }
    [[nodiscard]] DesktopFacts examine(const std::stop_token & /*stop*/) override { return desktop; }
    [[nodiscard]] std::vector<ApplicationFacts> examineApplications(const std::stop_token & /*stop*/) override {
        return desktop.applications;
    }
    bool enableAccessibility(const std::stop_token & /*stop*/) override {
        desktop.isAccessibilityEnabled = desktop.isAccessibilityKept = true;
        return true;
    }
    bool setStartsAtLogin(bool starts) override {
        desktop.startsAtLogin = starts;
        return true;
    }
    bool start(const std::stop_token & /*stop*/) override { return false; }
};

TEST_F(SetupCommands, TheDoctorFixesWhatIsSafeAndAsksTheServiceWithoutTheKey) {
    simulated.userDefaults.set(settingsKey::openRouterAPIKey, u"sk-secret"_s);
    EXPECT_EQ(terminal.run({u"doctor"_s}), exitStatus::failure);
    EXPECT_THAT(terminal.output, testing::Not(HasSubstr("sk-secret")));
    EXPECT_EQ(terminal.run({u"doctor"_s, u"--fix"_s, u"--json"_s}), exitStatus::success);
    EXPECT_THAT(terminal.errors, HasSubstr("Switched accessibility on."));
    EXPECT_THAT(terminal.output, testing::Not(HasSubstr("sk-secret")));
    desktop.isAccessibilityKept = desktop.isRunning = false;
    EXPECT_EQ(terminal.run({u"doctor"_s, u"--fix"_s}), exitStatus::success);
    EXPECT_EQ(terminal.errors, "Accessibility stays on at the next login.\n");
    EXPECT_THAT(terminal.output, testing::EndsWith("ready to be started.\n"));
    simulated.userDefaults.set(settingsKey::enabled, false);
    EXPECT_EQ(terminal.run({u"doctor"_s}), exitStatus::failure);
    for (const auto &[name, value] : simulated.urlSession.exchange(0)->request().headers) {
        EXPECT_FALSE(value.contains("sk-secret")) << name.toStdString();
    }
    EXPECT_FALSE(desktop.startsAtLogin);
    EXPECT_EQ(terminal.run({u"autostart"_s, u"on"_s}), exitStatus::success);
    EXPECT_TRUE(desktop.startsAtLogin);
}

TEST_F(SetupCommands, TheTerminalAsksForWhatIsMissing) {
    desktop.isAccessibilityKept = false;
    // Accessibility, autostart, a key that is none, the key, whether to try it.
    EXPECT_EQ(terminal.run({u"setup"_s}, "\n\nsk and more\n  sk-secret \nn\n"), exitStatus::success);
    EXPECT_EQ(simulated.userDefaults.string(settingsKey::openRouterAPIKey), u"sk-secret"_s);
    EXPECT_TRUE(*desktop.isAccessibilityEnabled);
    EXPECT_FALSE(desktop.startsAtLogin);
    EXPECT_THAT(terminal.output, testing::AllOf(HasSubstr("copy the key again."), testing::Not(HasSubstr("sk"))));
    desktop.isAccessibilityEnabled = false;
    EXPECT_EQ(terminal.run({u"setup"_s}), exitStatus::failure);
    EXPECT_FALSE(*desktop.isAccessibilityEnabled) << "an input that ends agrees to nothing";
}

} // namespace

} // namespace quillory
