// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealDesktop/AccessibleTree.h"
#include "RealDesktop/BrowserSettings.h"
#include "RealDesktop/ChildProcess.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace {

using namespace quillory::test;
using namespace platform;
using testing::AllOf;
using testing::Contains;
using testing::Field;

constexpr AXSubtreeLimits limits{.maxDepth = 21, .maxNodes = 2500};

struct DesktopAccessibility : testing::Test {
    desktop::QtMainQueue queue;
    desktop::AtspiAccessibility accessibility{queue};

    std::optional<AXUIElement> focused() {
        QCoreApplication::processEvents();
        return read<AXUIElement>(accessibility.createSystemWide(), AXAttribute::focusedUIElement);
    }
    QString describeFocus() {
        const auto element = focused();
        const auto text = [&](AXAttribute name) { return read<QString>(element, name).value_or(u"-"_s); };
        return text(AXAttribute::role) + u'|' + text(AXAttribute::value) + u'|' + text(AXAttribute::placeholderValue);
    }
};

TEST_F(DesktopAccessibility, GivesEveryKindOfFieldInChromiumItsRoleAndText) {
    const struct {
        const char *html;
        const char *focus;
    } fields[] = {
        {"<textarea placeholder=Note>one\n\ntwo\n</textarea>", "AXTextArea|one\n\ntwo\n|Note"},
        {"<input value='a \U0001F600 b' placeholder=Name>", "AXTextField|a \U0001F600 b|Name"},
        {"<input type=password value=secret>", "AXSecureTextField|-|-"},
        {"<input type=search value=s>", "AXSearchField|s|-"},
        {"<div contenteditable role=searchbox>s</div>", "AXSearchField|s|-"},
        {"<input list=l value=c><datalist id=l><option>a</datalist>", "AXComboBox|c|-"},
        {"<div contenteditable>plain<br>lines<div>next</div></div>", "AXTextArea|plain\nlines\nnext|-"},
        {"<div contenteditable role=textbox aria-multiline=true aria-placeholder=Type><p><br></p></div>",
         "AXTextArea||Type"},
        {"<div contenteditable role=textbox aria-multiline=true><p><br></p><p>a<br><br>b <b>bold</b> c</p><p><br></p>"
         "<p>\u0645\u0631\u062D\u0628\u0627 \U0001F44D\U0001F3FD</p><p><br></p></div>",
         "AXTextArea|\na\n\nb bold c\n\n\u0645\u0631\u062D\u0628\u0627 \U0001F44D\U0001F3FD\n|-"},
        {"<button>Send</button>", "AXButton|-|-"},
    };
    QTemporaryDir folder;
    QFile page(folder.filePath(u"page.html"_s));
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.write("<!doctype html><meta charset=utf-8><title>Chat</title>");
    for (const auto &field : fields) {
        page.write(field.html);
    }
    page.write("<script>document.querySelector('textarea').focus()</script>");
    page.close();
    std::vector<std::string> command = browserSettings::chromiumSwitches();
    command.insert(command.begin(), "chromium");
    command.insert(command.end(),
                   {"--force-renderer-accessibility", "--user-data-dir=" + folder.filePath(u"profile"_s).toStdString(),
                    "--app=file://" + page.fileName().toStdString()});
    const ChildProcess browser(command, Output::dropped);
    for (const auto &field : fields) {
        const auto expected = QString::fromUtf8(field.focus);
        EXPECT_TRUE(waitUntil([&] { return describeFocus() == expected; }, 30'000))
            << field.html << "\nexpected " << field.focus << "\nhas      " << describeFocus().toStdString();
        run({"xdotool", "key", "Tab"});
    }
    EXPECT_EQ(focused()->pid(), browser.pid());
    const auto window = read<AXUIElement>(accessibility.createApplication(browser.pid()), AXAttribute::focusedWindow);
    EXPECT_EQ(read<QString>(window, AXAttribute::title), u"Chat"_s);
}

TEST_F(DesktopAccessibility, WritesIntoAQtProgram) {
    ChildProcess chat({QCoreApplication::applicationDirPath().toStdString() + "/quillory-demo-chat"}, Output::dropped);
    ASSERT_TRUE(waitUntil([&] { return read<QString>(focused(), AXAttribute::role) == axRole::textArea; }, 30'000))
        << describeFocus().toStdString();
    const auto box = *focused();
    EXPECT_EQ(box.pid(), chat.pid());
    EXPECT_TRUE(box.isAttributeSettable(AXAttribute::value));
    const auto text = u"Gr\u00FC\u00DFe \U0001F600\n\u0645\u0631\u062D\u0628\u0627"_s;
    // On a busy machine the main thread's waits in one second may be used up.
    ASSERT_TRUE(waitUntil([&] { return box.setAttributeValue(AXAttribute::value, text); }));
    EXPECT_EQ(read<QString>(box, AXAttribute::value), text);
    EXPECT_EQ(read<double>(box, AXAttribute::numberOfCharacters), text.size());
    EXPECT_TRUE(waitUntil([&] {
        return box.setAttributeValue(AXAttribute::selectedTextRange, AXRange{text.size(), 0});
    }));
    EXPECT_TRUE(waitUntil([&] {
        return read<AXRange>(box, AXAttribute::selectedTextRange) == AXRange{text.size(), 0};
    }));
    const auto window = read<AXUIElement>(box, AXAttribute::window);
    ASSERT_EQ(read<QString>(window, AXAttribute::role), axRole::window);
    std::vector<AXSubtreeNode> nodes;
    EXPECT_TRUE(waitUntil([&] { return !(nodes = window->copySubtree(limits)).empty(); }));
    EXPECT_THAT(nodes, Contains(AllOf(Field(&AXSubtreeNode::role, QString(axRole::staticText)),
                                      Field(&AXSubtreeNode::value, testing::Ne(std::nullopt)),
                                      Field(&AXSubtreeNode::frame, testing::Ne(std::nullopt)))));
}

} // namespace
