// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "BrowserPage.h"

#include <QFile>

#include <stdexcept>
#include <thread>

namespace quillory::bench {

namespace axAttribute = platform::axAttribute;
namespace axRole = platform::axRole;
using platform::AXUIElement;

namespace {

QByteArray pageSource(int bubbles) {
    QByteArray page("<!doctype html><meta charset=utf-8><title>Chat</title><style>body{margin:0}"
                    "#log{height:500px;overflow:auto}.o{text-align:right}i{font-size:10px}</style><div id=log>");
    for (int i = 0; i < bubbles; ++i) {
        page += i % 2 == 0 ? "<div><span>" : "<div class=o><span>";
        page += "Message number " + QByteArray::number(i) + " of this chat</span> <i>12:45 PM</i></div>";
    }
    return page + "</div><div id=box contenteditable role=textbox aria-multiline=true>"
                  "<p>helo can u send me the price list</p></div><script>box.focus()</script>";
}

std::vector<std::string> browserCommand(const QString &folder) {
    return {"chromium",
            "--no-sandbox",
            "--test-type",
            "--force-renderer-accessibility",
            "--disable-gpu",
            "--no-first-run",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-sync",
            "--user-data-dir=" + folder.toStdString() + "/profile",
            "--app=file://" + folder.toStdString() + "/page.html"};
}

template <class T> std::optional<T> read(const AXUIElement &element, QLatin1StringView name) {
    const auto value = element.copyAttributeValue(name);
    const auto *found = value ? std::get_if<T>(&*value) : nullptr;
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

} // namespace

BrowserPage::BrowserPage(int bubbles) {
    QFile page(m_folder.filePath(QStringLiteral("page.html")));
    if (!page.open(QIODevice::WriteOnly) || page.write(pageSource(bubbles)) < 0) {
        throw std::runtime_error("the page cannot be written");
    }
    page.close();
    m_browser = test::ChildProcess(browserCommand(m_folder.path()), test::Output::dropped);
}

AXUIElement BrowserPage::waitForBox(platform::Accessibility &accessibility) {
    std::optional<AXUIElement> box;
    test::waitUntil(
        [&] {
            box = read<AXUIElement>(accessibility.createSystemWide(), axAttribute::focusedUIElement);
            return box && read<QString>(*box, axAttribute::role) == axRole::textArea && pageAround(*box);
        },
        30'000);
    if (!box) {
        throw std::runtime_error("the message box never had the focus");
    }
    // The browser settles, and so does what the main thread may wait for in any one second.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    return *box;
}

std::optional<AXUIElement> pageAround(const AXUIElement &element) {
    std::optional<AXUIElement> current = element;
    while (current && read<QString>(*current, axAttribute::role) != axRole::webArea) {
        current = read<AXUIElement>(*current, axAttribute::parent);
    }
    return current;
}

} // namespace quillory::bench
