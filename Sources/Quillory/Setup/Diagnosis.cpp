// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/Diagnosis.h"

#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Field/KnownPrograms.h"

#include <algorithm>
#include <iterator>

namespace quillory {

namespace {
using platform::ApplicationFacts;
using platform::DesktopFacts;
using State = Finding::State;
const auto browserCheck = QStringLiteral("browser");
const auto keptCheck = QStringLiteral("accessibility-kept");
const auto runningCheck = QStringLiteral("running");

Finding about(const QString &check, const QString &title) {
    Finding finding;
    finding.check = check;
    finding.title = title;
    return finding;
}

QString startForX11(const ApplicationFacts *application) {
    const QString chromium = QStringLiteral("chromium --ozone-platform=x11");
    const QString firefox = QStringLiteral("MOZ_ENABLE_WAYLAND=0 firefox");
    if (application == nullptr) {
        return chromium + QStringLiteral("  or  ") + firefox;
    }
    return programKind(application->bundleIdentifier) == ProgramKind::firefox ? firefox : chromium;
}

Finding aboutSession(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("session"), QStringLiteral("Session"));
    const QString name = desktop.desktopName.isEmpty() ? desktop.windowManager : desktop.desktopName;
    const QString where = name.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(name);
    if (!desktop.hasDisplay) {
        finding.state = State::problem;
        finding.found = desktop.session == platform::SessionType::wayland
                            ? QStringLiteral("Wayland%1, without an X display").arg(where)
                            : QStringLiteral("no X display can be reached");
        finding.advice = desktop.session == platform::SessionType::wayland
                             ? QStringLiteral("Install XWayland, or log in to an X11 session.")
                             : QStringLiteral("Run this in a desktop session.");
        return finding;
    }
    if (desktop.session == platform::SessionType::wayland) {
        finding.state = State::note;
        finding.found = QStringLiteral("Wayland%1: only browsers that run through XWayland work").arg(where);
        finding.advice = QStringLiteral("Start the browser with: ") + startForX11(nullptr);
        return finding;
    }
    finding.found = QStringLiteral("X11") + where;
    if (desktop.windowManager.isEmpty()) {
        finding.state = State::note;
        finding.found += QStringLiteral(", no window manager");
        finding.advice = QStringLiteral("Start one: without it, no window gets the keyboard focus.");
    }
    return finding;
}

Finding aboutAccessibilityBus(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("accessibility-bus"), QStringLiteral("Accessibility service"));
    if (desktop.hasAccessibilityBus) {
        finding.found = QStringLiteral("running");
        return finding;
    }
    finding.state = State::problem;
    finding.found =
        desktop.hasSessionBus ? QStringLiteral("does not answer") : QStringLiteral("no session bus was found");
    finding.advice = desktop.hasSessionBus ? QStringLiteral("Install the package at-spi2-core, then log in again.")
                                           : QStringLiteral("Run this in a desktop session.");
    return finding;
}

Finding aboutAccessibilitySwitch(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("accessibility"), QStringLiteral("Accessibility"));
    if (desktop.isAccessibilityEnabled.value_or(false)) {
        finding.found = QStringLiteral("switched on");
        return finding;
    }
    finding.state = State::problem;
    finding.found =
        desktop.isAccessibilityEnabled ? QStringLiteral("switched off") : QStringLiteral("could not be determined");
    if (desktop.hasAccessibilityBus) {
        finding.advice =
            QStringLiteral("Run quillory doctor --fix to switch it on, then close your browsers and open them again.");
        finding.remedy = Remedy::enableAccessibility;
    }
    return finding;
}

Finding aboutAccessibilityLater(const DesktopFacts &desktop) {
    Finding finding = about(keptCheck, QStringLiteral("At the next login"));
    if (!desktop.isAccessibilityKept) {
        finding.found = QStringLiteral("this desktop cannot keep accessibility switched on");
        finding.state = State::note;
        finding.advice = QStringLiteral("Quillory offers to switch it on whenever it is off.");
    } else if (*desktop.isAccessibilityKept) {
        finding.found = QStringLiteral("accessibility stays on");
    } else {
        finding.state = State::note;
        finding.found = QStringLiteral("accessibility will be off again");
        if (desktop.hasAccessibilityBus) {
            finding.advice = QStringLiteral("Keep it on with: quillory doctor --fix");
            finding.remedy = Remedy::enableAccessibility;
        }
    }
    return finding;
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

void askToReopen(Finding &finding) {
    finding.advice = QStringLiteral("Close all its windows, then open it again.");
    finding.needsReopening = true;
}

/// Judges a program by its pages, once its tree has answered.
void judgePages(Finding &finding, const ApplicationFacts &application) {
    const auto &[pages, isWhole] = *application.tree;
    std::vector<platform::PageFacts> chats;
    std::ranges::copy_if(pages, std::back_inserter(chats), [&](const platform::PageFacts &page) {
        return isChatProgram(application) || ChatContext::isChatHost(page.host);
    });
    if (std::ranges::any_of(chats, hasMessageBox)) {
        finding.found = QStringLiteral("WhatsApp and its message box were found");
        return;
    }
    finding.state = State::note;
    if (!isWhole) {
        finding.found = QStringLiteral("answers too slowly to be read completely; no message box found so far");
        finding.advice = QStringLiteral("Check again when it is less busy.");
    } else if (pages.empty()) {
        finding.state = State::problem;
        finding.found = QStringLiteral("shows no page; it was probably started before accessibility was switched on");
        askToReopen(finding);
    } else if (!chats.empty()) {
        finding.found = QStringLiteral("WhatsApp was found, but no message box");
        finding.advice = QStringLiteral("Open a chat in it. If one is open, close the program and open it again.");
    } else {
        finding.found = QStringLiteral("shows pages, but none of them is WhatsApp");
        finding.advice = QStringLiteral("Open web.whatsapp.com in it.");
    }
}

Finding aboutBrowser(const ApplicationFacts &application, const DesktopFacts &desktop) {
    Finding finding = about(browserCheck, application.name);
    if (desktop.session == platform::SessionType::wayland && !application.hasX11Window) {
        finding.state = State::problem;
        finding.found =
            QStringLiteral("runs directly on Wayland, where Quillory can neither place cards nor take keys");
        finding.advice = QStringLiteral("Close it, then start it with: ") + startForX11(&application);
        finding.needsReopening = true;
    } else if (!application.isOnBus) {
        finding.state = State::problem;
        finding.found =
            QStringLiteral("is not on the accessibility bus; it was started before accessibility was switched on");
        askToReopen(finding);
    } else if (!application.tree) {
        finding.state = State::problem;
        finding.found = QStringLiteral("does not answer");
        finding.advice = QStringLiteral("Wait until it is less busy, or close it and open it again.");
    } else {
        judgePages(finding, application);
    }
    return finding;
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
        Finding none = about(browserCheck, QStringLiteral("Browser"));
        none.state = State::note;
        none.found = QStringLiteral("not running");
        none.advice = QStringLiteral("Open web.whatsapp.com in a browser.");
        return {none};
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
    Finding finding = about(QStringLiteral("keys"), QStringLiteral("Tab and Esc"));
    if (!desktop.canGrabTab || !desktop.canGrabEscape) {
        finding.state = State::problem;
        finding.found = QStringLiteral("cannot be tested without an X display");
        return finding;
    }
    if (*desktop.canGrabTab && *desktop.canGrabEscape) {
        finding.found = QStringLiteral("free for Quillory to use while cards are up");
        return finding;
    }
    const QString key = *desktop.canGrabTab ? QStringLiteral("Esc")
                                            : (*desktop.canGrabEscape ? QStringLiteral("Tab") : QStringLiteral("both"));
    finding.state = State::problem;
    finding.found = QStringLiteral("another program has taken %1; the X server does not reveal which").arg(key);
    finding.advice = QStringLiteral("Look among the desktop's keyboard shortcuts and in hotkey tools. While Quillory "
                                    "shows a card, that program is Quillory.");
    return finding;
}

Finding aboutStatusArea(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("tray"), QStringLiteral("Status area"));
    if (desktop.hasStatusNotifier || desktop.hasTray) {
        finding.found = desktop.hasStatusNotifier ? QStringLiteral("found (status notifier)")
                                                  : QStringLiteral("found (system tray)");
        return finding;
    }
    finding.state = State::note;
    finding.found = QStringLiteral("not found, so Quillory has no icon");
    finding.advice =
        QStringLiteral("Start Quillory again to open its menu. On GNOME, the AppIndicator extension shows the icon.");
    return finding;
}

Finding aboutCompositor(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("compositor"), QStringLiteral("Compositor"));
    finding.found = desktop.hasCompositor ? QStringLiteral("running")
                                          : QStringLiteral("not running: cards have plain edges and do not fade");
    return finding;
}

Finding aboutClipboardManager(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("clipboard-manager"), QStringLiteral("Clipboard manager"));
    finding.found = desktop.hasClipboardManager
                        ? QStringLiteral("running; pasted answers are marked so that its history leaves them out")
                        : QStringLiteral("not found, and not needed");
    return finding;
}

Finding aboutKey(const ProgramFacts &program) {
    Finding finding = about(QStringLiteral("key"), QStringLiteral("API key"));
    if (program.hasKey && program.keyFault.isEmpty()) {
        finding.found = QStringLiteral("set (neither shown nor tried here)");
        return finding;
    }
    finding.state = State::problem;
    if (!program.hasKey && program.isKeyKept) {
        finding.found = QStringLiteral("in the password store, which is locked or does not answer");
        finding.advice = QStringLiteral("Unlock the store and check again. If that does not help, enter the key again "
                                        "with: quillory setup");
        return finding;
    }
    finding.found = program.hasKey ? program.keyFault : QStringLiteral("not set");
    finding.advice = QStringLiteral("Enter one with: quillory setup");
    finding.remedy = Remedy::enterKey;
    return finding;
}

Finding aboutService(const ProgramFacts &program) {
    Finding finding = about(QStringLiteral("service"), QStringLiteral("Model service"));
    if (program.serviceFault.isEmpty()) {
        finding.found = program.serviceHost + QStringLiteral(" answers");
        return finding;
    }
    finding.state = State::problem;
    finding.found = program.serviceFault;
    finding.advice = program.isServiceChosen
                         ? QStringLiteral("The variable QUILLORY_MODEL_SERVICE sets this address: change or unset it.")
                         : QStringLiteral("Check whether a proxy or firewall is in the way.");
    return finding;
}

Finding aboutSuggestions(const ProgramFacts &program) {
    Finding finding = about(QStringLiteral("suggestions"), QStringLiteral("Suggestions"));
    finding.found = program.areSuggestionsOn ? QStringLiteral("on") : QStringLiteral("switched off");
    if (!program.areSuggestionsOn) {
        finding.state = State::problem;
        finding.advice = QStringLiteral("Switch them on in Quillory's menu or settings, or with: quillory defaults "
                                        "write enabled true");
    }
    return finding;
}

/// Only a note: the doctor may be asked before Quillory is started.
Finding aboutRunning(const DesktopFacts &desktop) {
    Finding finding = about(runningCheck, QStringLiteral("Quillory"));
    if (desktop.isRunning.value_or(false)) {
        finding.found = QStringLiteral("running");
        return finding;
    }
    finding.state = State::note;
    if (desktop.isRunning) {
        finding.found = QStringLiteral("not running, so nothing is suggested yet");
        finding.advice = QStringLiteral("Start it with: quillory");
        finding.remedy = Remedy::start;
    } else {
        finding.found = QStringLiteral("cannot run without an X display");
    }
    return finding;
}

Finding aboutStartsAtLogin(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("autostart"), QStringLiteral("Start at login"));
    finding.found = desktop.startsAtLogin ? QStringLiteral("on") : QStringLiteral("off");
    if (!desktop.startsAtLogin) {
        finding.advice = QStringLiteral("If you want it: quillory autostart on");
        finding.remedy = Remedy::startAtLogin;
    }
    return finding;
}

Finding aboutVersions(const DesktopFacts &desktop, const ProgramFacts &program) {
    Finding finding = about(QStringLiteral("versions"), QStringLiteral("Versions"));
    finding.found =
        (QStringList{QStringLiteral("quillory ") + program.version} + desktop.versions).join(QStringLiteral(", "));
    return finding;
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
        return Offer{QStringLiteral("Switch On"), QStringLiteral("Switch accessibility on, now and for later logins?")};
    case Remedy::startAtLogin:
        return Offer{QStringLiteral("Switch On"), QStringLiteral("Start Quillory at every login?"), false};
    case Remedy::start:
        return Offer{QStringLiteral("Start"), {}}; // no question in a terminal, where users start it themselves
    case Remedy::enterKey:
        break;
    }
    return Offer{QStringLiteral("Enter Key"), {}};
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
