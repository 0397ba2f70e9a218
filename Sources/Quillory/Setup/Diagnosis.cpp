// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Setup/Diagnosis.h"

#include "Quillory/Field/AXText.h"
#include "Quillory/Field/ChatContext.h"

#include <algorithm>
#include <iterator>

namespace quillory {

namespace {
using platform::ApplicationFacts;
using platform::DesktopFacts;
using State = Finding::State;
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
    return application->bundleIdentifier.startsWith(QStringLiteral("org.mozilla.")) ? firefox : chromium;
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
                             ? QStringLiteral("Install and switch on XWayland, or log in to an X11 session.")
                             : QStringLiteral("Run this in a desktop session.");
        return finding;
    }
    if (desktop.session == platform::SessionType::wayland) {
        finding.state = State::note;
        finding.found = QStringLiteral("Wayland%1: only browsers that run under XWayland work").arg(where);
        finding.advice = QStringLiteral("Start the browser with: ") + startForX11(nullptr);
        return finding;
    }
    finding.found = QStringLiteral("X11") + where;
    if (desktop.windowManager.isEmpty()) {
        finding.state = State::note;
        finding.found += QStringLiteral(", no window manager");
        finding.advice = QStringLiteral("Without a window manager no window has the focus; start one.");
    }
    return finding;
}

Finding aboutAccessibilityBus(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("accessibility-bus"), QStringLiteral("Accessibility service"));
    if (desktop.hasAccessibilityBus) {
        finding.found = QStringLiteral("answers");
        return finding;
    }
    finding.state = State::problem;
    finding.found =
        desktop.hasSessionBus ? QStringLiteral("does not answer") : QStringLiteral("there is no session bus");
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
    finding.found = desktop.isAccessibilityEnabled ? QStringLiteral("switched off") : QStringLiteral("cannot be told");
    if (desktop.hasAccessibilityBus) {
        finding.advice = QStringLiteral("quillory doctor --fix switches it on; restart browsers after that.");
        finding.remedy = Remedy::enableAccessibility;
    }
    return finding;
}

Finding aboutAccessibilityLater(const DesktopFacts &desktop) {
    Finding finding = about(keptCheck, QStringLiteral("At the next login"));
    if (!desktop.isAccessibilityKept) {
        finding.found = QStringLiteral("this desktop has no setting that keeps accessibility on");
        finding.state = State::note;
        finding.advice = QStringLiteral("If it is off after a login, Quillory offers to switch it on.");
    } else if (*desktop.isAccessibilityKept) {
        finding.found = QStringLiteral("accessibility stays on");
    } else {
        finding.state = State::note;
        finding.found = QStringLiteral("accessibility will be off again");
        if (desktop.hasAccessibilityBus) {
            finding.advice = QStringLiteral("quillory doctor --fix keeps it on.");
            finding.remedy = Remedy::enableAccessibility;
        }
    }
    return finding;
}

bool isChatProgram(const ApplicationFacts &application) {
    return std::ranges::any_of(ChatContext::chatBundlePrefixes, [&](QLatin1StringView prefix) {
        return application.bundleIdentifier.startsWith(prefix);
    });
}

/// A chat page has other fields, to search in, at its top; what is written in stands below the conversation.
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

/// What is found of a program's pages once its tree has answered.
void judgePages(Finding &finding, const ApplicationFacts &application) {
    const auto &[pages, isWhole] = *application.tree;
    std::vector<platform::PageFacts> chats;
    std::ranges::copy_if(pages, std::back_inserter(chats), [&](const platform::PageFacts &page) {
        return isChatProgram(application) || ChatContext::isChatHost(page.host);
    });
    if (std::ranges::any_of(chats, hasMessageBox)) {
        finding.found = QStringLiteral("WhatsApp is seen, and its message box");
        return;
    }
    finding.state = State::note;
    if (!isWhole) {
        finding.found = QStringLiteral("answers too slowly to be looked through; no message box was seen so far");
        finding.advice = QStringLiteral("Look again when it is less busy.");
    } else if (pages.empty()) {
        finding.state = State::problem;
        finding.found = QStringLiteral("shows no page; it was probably started before accessibility was on");
        askToReopen(finding);
    } else if (!chats.empty()) {
        finding.found = QStringLiteral("WhatsApp is seen, but no message box");
        finding.advice = QStringLiteral("Open a chat in it. If one is open, close the program and open it again.");
    } else {
        finding.found = QStringLiteral("pages are seen, none of them WhatsApp");
        finding.advice = QStringLiteral("Open web.whatsapp.com in it.");
    }
}

Finding aboutBrowser(const ApplicationFacts &application, const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("browser"), application.name);
    if (desktop.session == platform::SessionType::wayland && !application.hasX11Window) {
        finding.state = State::problem;
        finding.found = QStringLiteral("runs on Wayland itself, where Quillory cannot place cards nor take keys");
        finding.advice = QStringLiteral("Close it, then start it with: ") + startForX11(&application);
        finding.needsReopening = true;
    } else if (!application.isOnBus) {
        finding.state = State::problem;
        finding.found = QStringLiteral("is not on the accessibility bus; it was started before accessibility was on");
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

/// Where one works the others are in nobody's way.
std::vector<Finding> aboutBrowsers(const DesktopFacts &desktop) {
    std::vector<Finding> findings;
    for (const ApplicationFacts &application : desktop.applications) {
        if (isChatProgram(application) || AXText::isBrowserIdentifier(application.bundleIdentifier)) {
            findings.push_back(aboutBrowser(application, desktop));
        }
    }
    if (findings.empty()) {
        Finding none = about(QStringLiteral("browser"), QStringLiteral("Browser"));
        none.state = State::note;
        none.found = QStringLiteral("none is running");
        none.advice = QStringLiteral("Open web.whatsapp.com in a browser and look again.");
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
        finding.found = QStringLiteral("cannot be tried without an X display");
        return finding;
    }
    if (*desktop.canGrabTab && *desktop.canGrabEscape) {
        finding.found = QStringLiteral("can be taken while cards are up");
        return finding;
    }
    const QString key = *desktop.canGrabTab ? QStringLiteral("Esc")
                                            : (*desktop.canGrabEscape ? QStringLiteral("Tab") : QStringLiteral("both"));
    finding.state = State::problem;
    finding.found =
        QStringLiteral("another program has taken %1 for itself; the X server does not tell which").arg(key);
    finding.advice = QStringLiteral("Look for it among the desktop's keyboard shortcuts and in hotkey tools. While "
                                    "Quillory shows a card, it is Quillory.");
    return finding;
}

Finding aboutStatusArea(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("tray"), QStringLiteral("Status area"));
    if (desktop.hasStatusNotifier || desktop.hasTray) {
        finding.found = desktop.hasStatusNotifier ? QStringLiteral("there (status notifier)")
                                                  : QStringLiteral("there (the older system tray)");
        return finding;
    }
    finding.state = State::note;
    finding.found = QStringLiteral("none, so Quillory's icon cannot be seen");
    finding.advice = QStringLiteral("Start Quillory again to open its menu. GNOME shows the icon with the extension "
                                    "AppIndicator.");
    return finding;
}

Finding aboutCompositor(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("compositor"), QStringLiteral("Compositor"));
    finding.found = desktop.hasCompositor ? QStringLiteral("there")
                                          : QStringLiteral("none: cards have plain edges and do not fade");
    return finding;
}

Finding aboutClipboardManager(const DesktopFacts &desktop) {
    Finding finding = about(QStringLiteral("clipboard-manager"), QStringLiteral("Clipboard manager"));
    finding.found = desktop.hasClipboardManager
                        ? QStringLiteral("there; pasted answers are marked so that histories leave them out")
                        : QStringLiteral("none that says so, and none is needed");
    return finding;
}

Finding aboutKey(const ProgramFacts &program) {
    Finding finding = about(QStringLiteral("key"), QStringLiteral("API key"));
    if (program.hasKey && program.keyFault.isEmpty()) {
        finding.found = QStringLiteral("set (not shown, and not tried here)");
        return finding;
    }
    finding.state = State::problem;
    if (!program.hasKey && program.isKeyKept) {
        finding.found = QStringLiteral("kept in the password store, which is locked or does not answer");
        finding.advice = QStringLiteral("Unlock it and check again. If that does not help, enter the key anew with: "
                                        "quillory setup");
        return finding;
    }
    finding.found = program.hasKey ? program.keyFault : QStringLiteral("none is set");
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
    finding.advice =
        program.isServiceChosen
            ? QStringLiteral("The variable QUILLORY_MODEL_SERVICE says where requests go: change or unset it.")
            : QStringLiteral("Look whether a proxy or firewall is in the way.");
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

/// A note only, since one may ask before the start.
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
        finding.found = QStringLiteral("without an X display it cannot run");
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
        return Offer{QStringLiteral("Start"), {}}; // in a terminal one starts it oneself
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

bool isAtWork(const std::vector<Finding> &findings) {
    return canWork(findings) && std::ranges::any_of(findings, [](const Finding &finding) {
               return finding.check == runningCheck && finding.state == State::good;
           });
}

} // namespace quillory
