// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Accessibility/AtspiAccessibility.h"
#include "Platform/Linux/QtMainQueue.h"
#include "RealDesktop/ChildProcess.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>

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

    template <class T> static std::optional<T> read(const std::optional<AXUIElement> &element, QLatin1StringView name) {
        const auto value = element ? element->copyAttributeValue(name) : std::nullopt;
        const auto *found = value ? std::get_if<T>(&*value) : nullptr;
        return found != nullptr ? std::optional(*found) : std::nullopt;
    }
    std::optional<AXUIElement> focused() {
        QCoreApplication::processEvents();
        return read<AXUIElement>(accessibility.createSystemWide(), axAttribute::focusedUIElement);
    }
    QString describeFocus() {
        const auto element = focused();
        const auto text = [&](QLatin1StringView name) {
            return read<QString>(element, name).value_or(QStringLiteral("-"));
        };
        return text(axAttribute::role) + u'|' + text(axAttribute::value) + u'|' + text(axAttribute::placeholderValue);
    }
    std::optional<AXUIElement> ancestor(QLatin1StringView role) {
        auto element = focused();
        while (element && read<QString>(element, axAttribute::role) != role) {
            element = read<AXUIElement>(element, axAttribute::parent);
        }
        return element;
    }
};

struct Chromium : DesktopAccessibility {
    QTemporaryDir folder;
    ChildProcess browser;

    void open(const char *body, const std::string &flag) {
        QFile page(folder.filePath(QStringLiteral("page.html")));
        ASSERT_TRUE(page.open(QIODevice::WriteOnly));
        page.write(QByteArray("<!doctype html><meta charset=utf-8><title>Chat</title>") + body);
        page.close();
        browser = ChildProcess({"chromium", "--no-sandbox", "--password-store=basic", "--test-type", flag,
                                "--disable-gpu", "--no-first-run", "--disable-background-networking",
                                "--disable-component-update", "--disable-sync",
                                "--user-data-dir=" + folder.filePath(QStringLiteral("profile")).toStdString(),
                                "--app=file://" + page.fileName().toStdString()},
                               Output::dropped);
    }
};

TEST_F(Chromium, GivesEveryKindOfFieldItsRoleAndText) {
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
    QByteArray body;
    for (const auto &field : fields) {
        body += field.html;
    }
    ASSERT_NO_FATAL_FAILURE(
        open(body + "<script>document.querySelector('textarea').focus()</script>", "--force-renderer-accessibility"));
    for (const auto &field : fields) {
        const auto expected = QString::fromUtf8(field.focus);
        EXPECT_TRUE(waitUntil([&] { return describeFocus() == expected; }, 30'000))
            << field.html << "\nexpected " << field.focus << "\nhas      " << describeFocus().toStdString();
        run({"xdotool", "key", "Tab"});
    }
}

TEST_F(Chromium, StartedAsUsersDoGivesItsPage) {
    open("<p>Hello <b>there</b></p><div contenteditable>draft</div>"
         "<script>document.querySelector('div').focus()</script>",
         "--disable-translate");
    ASSERT_TRUE(waitUntil([&] { return describeFocus() == QStringLiteral("AXTextArea|draft|-"); }, 30'000))
        << describeFocus().toStdString();
    EXPECT_EQ(focused()->pid(), browser.pid());
    const auto page = ancestor(axRole::webArea);
    EXPECT_EQ(read<QUrl>(page, axAttribute::url), QUrl::fromLocalFile(folder.filePath(QStringLiteral("page.html"))));
    EXPECT_EQ(read<QString>(read<AXUIElement>(focused(), axAttribute::window), axAttribute::title),
              QStringLiteral("Chat"));
    const auto window = read<AXUIElement>(accessibility.createApplication(browser.pid()), axAttribute::focusedWindow);
    EXPECT_EQ(read<QString>(window, axAttribute::title), QStringLiteral("Chat"));
    // A read that the browser was too busy for is tried again, as the program does.
    QStringList lines;
    waitUntil([&] {
        lines.clear();
        for (const auto &node : page->copySubtree(limits)) {
            if (node.value && node.frame && node.frame->width > 0) {
                lines.push_back(*node.value);
            }
        }
        return !lines.isEmpty();
    });
    EXPECT_EQ(lines.join(u'|'), QStringLiteral("Hello |there|draft"));
}

TEST_F(Chromium, ThatHangsComesBack) {
    open("<textarea>draft</textarea><script>document.querySelector('textarea').focus()</script>",
         "--force-renderer-accessibility");
    const auto draft = QStringLiteral("AXTextArea|draft|-");
    ASSERT_TRUE(waitUntil([&] { return describeFocus() == draft; }, 30'000));
    kill(browser.pid(), SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return describeFocus() == QStringLiteral("-|-|-"); }));
    EXPECT_TRUE(focused());
    kill(browser.pid(), SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return describeFocus() == draft; }));
    browser.end();
    EXPECT_TRUE(waitUntil([&] { return !focused(); }));
}

TEST_F(DesktopAccessibility, WritesIntoAQtProgram) {
    ChildProcess chat({QCoreApplication::applicationDirPath().toStdString() + "/quillory-demo-chat"}, Output::dropped);
    ASSERT_TRUE(waitUntil([&] { return read<QString>(focused(), axAttribute::role) == axRole::textArea; }, 30'000))
        << describeFocus().toStdString();
    const auto box = *focused();
    EXPECT_EQ(box.pid(), chat.pid());
    EXPECT_TRUE(box.isAttributeSettable(axAttribute::value));
    const auto text = QStringLiteral("Gr\u00FC\u00DFe \U0001F600\n\u0645\u0631\u062D\u0628\u0627");
    ASSERT_TRUE(box.setAttributeValue(axAttribute::value, text));
    EXPECT_EQ(read<QString>(box, axAttribute::value), text);
    EXPECT_EQ(read<double>(box, axAttribute::numberOfCharacters), text.size());
    // On a busy machine what the main thread may wait for in one second can be used up.
    EXPECT_TRUE(waitUntil([&] {
        return box.setAttributeValue(axAttribute::selectedTextRange, AXRange{text.size(), 0});
    }));
    EXPECT_TRUE(waitUntil([&] {
        return read<AXRange>(box, axAttribute::selectedTextRange) == AXRange{text.size(), 0};
    }));
    const auto window = read<AXUIElement>(box, axAttribute::window);
    EXPECT_EQ(read<QString>(window, axAttribute::role), axRole::window);
    std::vector<AXSubtreeNode> nodes;
    EXPECT_TRUE(waitUntil([&] { return !(nodes = window->copySubtree(limits)).empty(); }));
    EXPECT_THAT(nodes, Contains(AllOf(Field(&AXSubtreeNode::role, QString(axRole::staticText)),
                                      Field(&AXSubtreeNode::value, testing::Ne(std::nullopt)),
                                      Field(&AXSubtreeNode::frame, testing::Ne(std::nullopt)))));
}

TEST_F(DesktopAccessibility, TellsOurOwnWindowsApart) {
    QLineEdit own;
    own.show();
    // Qt tells nobody of a focus that came before its accessibility had started.
    ASSERT_TRUE(waitUntil([&] {
        own.clearFocus();
        own.setFocus();
        const auto element = focused();
        return element && element->pid() == QCoreApplication::applicationPid();
    }));
    const auto element = focused();
    ASSERT_TRUE(element);
    EXPECT_FALSE(element->copyAttributeValue(axAttribute::value));
}

TEST_F(DesktopAccessibility, OffersToSwitchTheServiceOn) {
    EXPECT_TRUE(accessibility.isProcessTrusted());
    run({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
         "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled", "variant:boolean:false"},
        Output::dropped);
    ASSERT_TRUE(waitUntil([&] { return !accessibility.isProcessTrusted(); }));
    EXPECT_FALSE(accessibility.isProcessTrustedWithPrompt());
    QMessageBox *prompt = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        QCoreApplication::processEvents();
        for (auto *widget : QApplication::topLevelWidgets()) {
            prompt = prompt != nullptr ? prompt : qobject_cast<QMessageBox *>(widget);
        }
        return prompt != nullptr && prompt->isVisible();
    }));
    prompt->defaultButton()->click();
    EXPECT_TRUE(waitUntil([&] { return accessibility.isProcessTrusted(); }));
}

} // namespace
