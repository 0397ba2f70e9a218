// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrowserPage.h"

#include "RealDesktop/BrowserSettings.h"

#include <QFile>

#include <stdexcept>
#include <thread>

namespace quillory::bench {

using platform::AXAttribute;
namespace axRole = platform::axRole;
using platform::AXUIElement;

namespace {

QByteArray pageSource(const BrowserPage::Chat &chat) {
    QByteArray page("<!doctype html><meta charset=utf-8><title>Chat</title><style>body{margin:0}"
                    "#log{height:500px;overflow:auto}.o{text-align:right}i{font-size:10px}</style><div id=log>");
    for (int i = 0; i < chat.bubbles; ++i) {
        page += i % 2 == 0 ? "<div><span>" : "<div class=o><span>";
        page += "Message number " + QByteArray::number(i) + " of this chat</span> <i>12:45 PM</i></div>";
    }
    page += "</div><div id=box contenteditable role=textbox aria-multiline=true>"
            "<p>helo can u send me the price list</p></div><script>box.focus()</script>";
    if (chat.millisecondsBetweenMessages > 0) {
        page += "<script>let n=0;setInterval(()=>{const d=document.createElement('div');"
                "d.innerHTML='<span>New message '+(++n)+'</span> <i>12:46 PM</i>';log.prepend(d)}," +
                QByteArray::number(chat.millisecondsBetweenMessages) + ")</script>";
    }
    return page;
}

void write(const QString &path, const QByteArray &content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0) {
        throw std::runtime_error("the page cannot be written");
    }
}

std::vector<std::string> commandLine(BrowserPage::Browser browser, const QString &folder) {
    const QString profile = folder + QStringLiteral("/profile");
    const std::string page = "file://" + folder.toStdString() + "/page.html";
    if (browser == BrowserPage::Browser::firefox) {
        test::browserSettings::makeFirefoxProfile(profile);
        return {"env",
                "GNOME_ACCESSIBILITY=1",
                "MOZ_CRASHREPORTER_DISABLE=1",
                "firefox-esr",
                "--no-remote",
                "--profile",
                profile.toStdString(),
                page};
    }
    auto command = test::browserSettings::chromiumSwitches();
    command.insert(command.begin(), "chromium");
    command.insert(command.end(),
                   {"--force-renderer-accessibility", "--user-data-dir=" + profile.toStdString(), "--app=" + page});
    return command;
}

template <class T> std::optional<T> read(const AXUIElement &element, AXAttribute name) {
    const auto value = element.copyAttributeValue(name);
    const auto *found = value ? std::get_if<T>(&*value) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

} // namespace

BrowserPage::BrowserPage(Browser browser, Chat chat) {
    write(m_folder.filePath(QStringLiteral("page.html")), pageSource(chat));
    m_browser = test::ChildProcess(commandLine(browser, m_folder.path()), test::Output::dropped);
}

AXUIElement BrowserPage::waitForBox(platform::Accessibility &accessibility) {
    std::optional<AXUIElement> box;
    test::waitUntil(
        [&] {
            box = read<AXUIElement>(accessibility.createSystemWide(), AXAttribute::focusedUIElement);
            return box && read<QString>(*box, AXAttribute::role) == axRole::textArea && pageAround(*box);
        },
        30'000);
    if (!box) {
        throw std::runtime_error("the message box never had the focus");
    }
    // Until the browser is idle, and the time that the main thread may wait in a second is available again.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    return *box;
}

std::optional<AXUIElement> pageAround(const AXUIElement &element) {
    std::optional<AXUIElement> current = element;
    while (current && read<QString>(*current, AXAttribute::role) != axRole::webArea) {
        current = read<AXUIElement>(*current, AXAttribute::parent);
    }
    return current;
}

} // namespace quillory::bench
