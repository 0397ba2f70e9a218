// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/Diagnosis.h"

#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Field/KnownPrograms.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace quillory {

namespace {
using platform::ApplicationFacts;
using platform::DesktopFacts;
using State = Finding::State;
const auto browserCheck = u"browser"_s;
const auto keptCheck = u"accessibility-kept"_s;
const auto runningCheck = u"running"_s;
const auto reopen = u"Close all its windows, then open it again."_s;

/// What a finding is about.
struct Subject {
    QString check;
    QString title;

    [[nodiscard]] Finding is(State state, const QString &found, const QString &advice = {},
                             Remedy remedy = Remedy::none) const {
        return {check, title, state, found, advice, remedy};
    }
    [[nodiscard]] Finding good(const QString &found) const { return is(State::good, found); }
    [[nodiscard]] Finding note(const QString &found, const QString &advice = {}, Remedy remedy = Remedy::none) const {
        return is(State::note, found, advice, remedy);
    }
    [[nodiscard]] Finding problem(const QString &found, const QString &advice = {},
                                  Remedy remedy = Remedy::none) const {
        return is(State::problem, found, advice, remedy);
    }
};

QString startForX11(ProgramKind kind) {
    const QString chromium = u"chromium --ozone-platform=x11"_s;
    const QString firefox = u"MOZ_ENABLE_WAYLAND=0 firefox"_s;
    return kind == ProgramKind::firefox ? firefox : chromium;
}

Finding aboutSession(const DesktopFacts &desktop) {
    const Subject session{u"session"_s, u"Session"_s};
    const QString name = desktop.desktopName.isEmpty() ? desktop.windowManager : desktop.desktopName;
    const QString where = name.isEmpty() ? QString() : u" (%1)"_s.arg(name);
    const bool isWayland = desktop.session == platform::SessionType::wayland;
    if (!desktop.hasDisplay) {
        return isWayland ? session.problem(u"Wayland%1, without an X display"_s.arg(where),
                                           u"Install XWayland, or log in to an X11 session."_s)
                         : session.problem(u"no X display can be reached"_s, u"Run this in a desktop session."_s);
    }
    if (isWayland) {
        return session.note(u"Wayland%1: only browsers that run through XWayland work"_s.arg(where),
                            u"Start the browser with: %1  or  %2"_s.arg(startForX11(ProgramKind::browser),
                                                                        startForX11(ProgramKind::firefox)));
    }
    return desktop.windowManager.isEmpty()
               ? session.note(u"X11%1, no window manager"_s.arg(where),
                              u"Start one: without it, no window gets the keyboard focus."_s)
               : session.good(u"X11"_s + where);
}

Finding aboutAccessibilityBus(const DesktopFacts &desktop) {
    const Subject bus{u"accessibility-bus"_s, u"Accessibility service"_s};
    if (desktop.hasAccessibilityBus) {
        return bus.good(u"running"_s);
    }
    return desktop.hasSessionBus
               ? bus.problem(u"does not answer"_s, u"Install the package at-spi2-core, then log in again."_s)
               : bus.problem(u"no session bus was found"_s, u"Run this in a desktop session."_s);
}

Finding aboutAccessibilitySwitch(const DesktopFacts &desktop) {
    const Subject accessibility{u"accessibility"_s, u"Accessibility"_s};
    if (desktop.isAccessibilityEnabled.value_or(false)) {
        return accessibility.good(u"switched on"_s);
    }
    const QString found = desktop.isAccessibilityEnabled ? u"switched off"_s : u"could not be determined"_s;
    return desktop.hasAccessibilityBus
               ? accessibility.problem(found,
                                       u"Run quillory doctor --fix to switch it on, then close your browsers and open "
                                       "them again."_s,
                                       Remedy::enableAccessibility)
               : accessibility.problem(found);
}

Finding aboutAccessibilityLater(const DesktopFacts &desktop) {
    const Subject later{keptCheck, u"At the next login"_s};
    if (!desktop.isAccessibilityKept) {
        return later.note(u"this desktop cannot keep accessibility switched on"_s,
                          u"Quillory offers to switch it on whenever it is off."_s);
    }
    if (*desktop.isAccessibilityKept) {
        return later.good(u"accessibility stays on"_s);
    }
    const QString found = u"accessibility will be off again"_s;
    return desktop.hasAccessibilityBus
               ? later.note(found, u"Keep it on with: quillory doctor --fix"_s, Remedy::enableAccessibility)
               : later.note(found);
}

bool isChatProgram(const ApplicationFacts &application) {
    return programKind(application.bundleIdentifier) == ProgramKind::chat;
}

/// A chat page also has search fields, at its top; the message box is below the conversation.
bool isMessageBox(const platform::FieldFacts &field, const platform::PageFacts &page) {
    const bool isAbove = field.frame && page.frame && field.frame->midY() < page.frame->midY();
    return AXText::isTextRole(field.role) && field.role != platform::axRole::searchField && !isAbove;
}

bool hasMessageBox(const platform::PageFacts &page) {
    return std::ranges::any_of(page.fields, [&](const auto &field) { return isMessageBox(field, page); });
}

Finding toReopen(Finding finding) {
    finding.needsReopening = true;
    return finding;
}

/// Judges a program by its pages, once its tree has answered.
Finding aboutPages(const Subject &browser, const ApplicationFacts &application) {
    const auto &[pages, isWhole] = *application.tree;
    std::vector<platform::PageFacts> chats;
    std::ranges::copy_if(pages, std::back_inserter(chats), [&](const platform::PageFacts &page) {
        return isChatProgram(application) || ChatContext::isChatHost(page.host);
    });
    if (std::ranges::any_of(chats, hasMessageBox)) {
        return browser.good(u"WhatsApp and its message box were found"_s);
    }
    if (!isWhole) {
        return browser.note(u"answers too slowly to be read completely; no message box found so far"_s,
                            u"Check again when it is less busy."_s);
    }
    if (pages.empty()) {
        return toReopen(
            browser.problem(u"shows no page; it was probably started before accessibility was switched on"_s, reopen));
    }
    return chats.empty()
               ? browser.note(u"shows pages, but none of them is WhatsApp"_s, u"Open web.whatsapp.com in it."_s)
               : browser.note(u"WhatsApp was found, but no message box"_s,
                              u"Open a chat in it. If one is open, close the program and open it again."_s);
}

Finding aboutBrowser(const ApplicationFacts &application, const DesktopFacts &desktop) {
    const Subject browser{browserCheck, application.name};
    if (desktop.session == platform::SessionType::wayland && !application.hasX11Window) {
        return toReopen(browser.problem(
            u"runs directly on Wayland, where Quillory can neither place cards nor take keys"_s,
            u"Close it, then start it with: "_s + startForX11(programKind(application.bundleIdentifier))));
    }
    if (!application.isOnBus) {
        return toReopen(browser.problem(
            u"is not on the accessibility bus; it was started before accessibility was switched on"_s, reopen));
    }
    return application.tree
               ? aboutPages(browser, application)
               : browser.problem(u"does not answer"_s, u"Wait until it is less busy, or close it and open it again."_s);
}

/// Once one program works, problems of the others are only notes.
std::vector<Finding> aboutBrowsers(const DesktopFacts &desktop) {
    std::vector<Finding> findings;
    for (const ApplicationFacts &application : desktop.applications) {
        if (isChatProgram(application) || isBrowser(application.bundleIdentifier)) {
            findings.push_back(aboutBrowser(application, desktop));
        }
    }
    if (findings.empty()) {
        return {Subject{browserCheck, u"Browser"_s}.note(u"not running"_s, u"Open web.whatsapp.com in a browser."_s)};
    }
    const bool oneWorks = std::ranges::any_of(findings, [](const Finding &f) { return f.state == State::good; });
    for (Finding &finding : findings) {
        if (oneWorks && finding.state == State::problem) {
            finding.state = State::note;
        }
    }
    return findings;
}

Finding aboutKeys(const DesktopFacts &desktop) {
    const Subject keys{u"keys"_s, u"Tab and Esc"_s};
    if (!desktop.canGrabTab || !desktop.canGrabEscape) {
        return keys.problem(u"cannot be tested without an X display"_s);
    }
    if (*desktop.canGrabTab && *desktop.canGrabEscape) {
        return keys.good(u"free for Quillory to use while cards are up"_s);
    }
    const QString key = *desktop.canGrabTab ? u"Esc"_s : (*desktop.canGrabEscape ? u"Tab"_s : u"both"_s);
    return keys.problem(u"another program has taken %1; the X server does not reveal which"_s.arg(key),
                        u"Look among the desktop's keyboard shortcuts and in hotkey tools. While Quillory shows a "
                        "card, that program is Quillory."_s);
}

Finding aboutStatusArea(const DesktopFacts &desktop) {
    const Subject tray{u"tray"_s, u"Status area"_s};
    if (desktop.hasStatusNotifier || desktop.hasTray) {
        return tray.good(desktop.hasStatusNotifier ? u"found (status notifier)"_s : u"found (system tray)"_s);
    }
    return tray.note(u"not found, so Quillory has no icon"_s,
                     u"Start Quillory again to open its menu. On GNOME, the AppIndicator extension shows the icon."_s);
}

Finding aboutCompositor(const DesktopFacts &desktop) {
    return Subject{u"compositor"_s, u"Compositor"_s}.good(
        desktop.hasCompositor ? u"running"_s : u"not running: cards have plain edges and do not fade"_s);
}

Finding aboutClipboardManager(const DesktopFacts &desktop) {
    return Subject{u"clipboard-manager"_s, u"Clipboard manager"_s}.good(
        desktop.hasClipboardManager ? u"running; pasted answers are marked so that its history leaves them out"_s
                                    : u"not found, and not needed"_s);
}

Finding aboutKey(const ProgramFacts &program) {
    const Subject key{u"key"_s, u"API key"_s};
    if (program.hasKey && program.keyFault.isEmpty()) {
        return key.good(u"set (neither shown nor tried here)"_s);
    }
    if (!program.hasKey && program.isKeyKept) {
        return key.problem(u"in the password store, which is locked or does not answer"_s,
                           u"Unlock the store and check again. If that does not help, enter the key again with: "
                           "quillory setup"_s);
    }
    return key.problem(program.hasKey ? program.keyFault : u"not set"_s, u"Enter one with: quillory setup"_s,
                       Remedy::enterKey);
}

Finding aboutService(const ProgramFacts &program) {
    const Subject service{u"service"_s, u"Model service"_s};
    if (program.serviceFault.isEmpty()) {
        return service.good(program.serviceHost + u" answers"_s);
    }
    return service.problem(program.serviceFault,
                           program.isServiceChosen
                               ? u"The variable QUILLORY_MODEL_SERVICE sets this address: change or unset it."_s
                               : u"Check whether a proxy or firewall is in the way."_s);
}

Finding aboutSuggestions(const ProgramFacts &program) {
    const Subject suggestions{u"suggestions"_s, u"Suggestions"_s};
    return program.areSuggestionsOn
               ? suggestions.good(u"on"_s)
               : suggestions.problem(u"switched off"_s, u"Switch them on in Quillory's menu or settings, or with: "
                                                        "quillory defaults write enabled true"_s);
}

/// Only a note: the doctor may be asked before Quillory is started.
Finding aboutRunning(const DesktopFacts &desktop) {
    const Subject running{runningCheck, u"Quillory"_s};
    if (!desktop.isRunning) {
        return running.note(u"cannot run without an X display"_s);
    }
    return *desktop.isRunning ? running.good(u"running"_s)
                              : running.note(u"not running, so nothing is suggested yet"_s,
                                             u"Start it with: quillory"_s, Remedy::start);
}

Finding aboutStartsAtLogin(const DesktopFacts &desktop) {
    const Subject autostart{u"autostart"_s, u"Start at login"_s};
    return desktop.startsAtLogin
               ? autostart.good(u"on"_s)
               : autostart.is(State::good, u"off"_s, u"If you want it: quillory autostart on"_s, Remedy::startAtLogin);
}

Finding aboutVersions(const DesktopFacts &desktop, const ProgramFacts &program) {
    const QStringList versions = QStringList{u"quillory "_s + program.version} + desktop.versions;
    return Subject{u"versions"_s, u"Versions"_s}.good(versions.join(u", "));
}

} // namespace

std::vector<Finding> diagnose(const DesktopFacts &desktop, const ProgramFacts &program) {
    std::vector<Finding> findings{aboutSession(desktop), aboutAccessibilityBus(desktop),
                                  aboutAccessibilitySwitch(desktop), aboutAccessibilityLater(desktop)};
    for (Finding &finding : aboutBrowsers(desktop)) {
        findings.push_back(std::move(finding));
    }
    for (Finding finding :
         {aboutKeys(desktop), aboutStatusArea(desktop), aboutCompositor(desktop), aboutClipboardManager(desktop),
          aboutKey(program), aboutService(program), aboutSuggestions(program), aboutRunning(desktop),
          aboutStartsAtLogin(desktop), aboutVersions(desktop, program)}) {
        findings.push_back(std::move(finding));
    }
    return findings;
}

std::optional<Offer> offerFor(const Finding &finding) {
    switch (finding.remedy) {
    case Remedy::none:
        return std::nullopt;
    case Remedy::enableAccessibility:
        return Offer{u"Switch On"_s, u"Switch accessibility on, now and for later logins?"_s};
    case Remedy::startAtLogin:
        return Offer{u"Switch On"_s, u"Start Quillory at every login?"_s, false};
    case Remedy::start:
        return Offer{u"Start"_s, {}}; // no question in a terminal, where users start it themselves
    case Remedy::enterKey:
        break;
    }
    return Offer{u"Enter Key"_s, {}};
}

bool isOnlyForLater(const Finding &finding) {
    return finding.check == keptCheck;
}

bool canWork(const std::vector<Finding> &findings) {
    return std::ranges::none_of(findings, [](const Finding &f) { return f.state == State::problem; });
}

bool isWaitingForChat(const std::vector<Finding> &findings) {
    const auto isChat = [](const Finding &f) { return f.check == browserCheck && f.state == State::good; };
    return !findings.empty() && std::ranges::none_of(findings, isChat);
}

bool isAtWork(const std::vector<Finding> &findings) {
    return canWork(findings) && std::ranges::any_of(findings, [](const Finding &finding) {
               return finding.check == runningCheck && finding.state == State::good;
           });
}

} // namespace quillory
