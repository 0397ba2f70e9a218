// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/AccessibleTree.h"
#include "EndToEnd/ChatStory.h"
#include "EndToEnd/Keyboard.h"
#include "RealDesktop/RealDesktop.h"

#include <QFile>

namespace quillory::test {

namespace {

constexpr auto setupTitle = "Set Up Quillory";
constexpr auto settingsTitle = "Quillory";
constexpr auto promptTitle = "Quillory";
constexpr auto pageTitle = "Chats";

bool isUp(const std::string &title) {
    return run({"xdotool", "search", "--onlyvisible", "--name", '^' + title + '$'}, Output::dropped) == 0;
}

bool isActive(const std::string &title) {
    return run({"sh", "-c", "xdotool getactivewindow getwindowname | grep -q '^" + title + "\\($\\| [-—]\\)'"},
               Output::dropped) == 0;
}

/// As a user goes from window to window.
bool bringUp(const std::string &title) {
    return waitUntil(
        [&] {
            if (!isActive(title)) {
                keyboard::tap("alt+Tab");
            }
            return waitUntil([&] { return isActive(title); }, 500);
        },
        20'000);
}

bool closeWithEscape(const std::string &title) {
    return bringUp(title) && waitUntil([&] {
               keyboard::tap("Escape");
               return waitUntil([&] { return !isUp(title); }, 500);
           });
}

/// A password store of the test's own, so that the machine's is not asked.
void usePasswordStore() {
    qputenv("SECRET_BACKEND", "file");
    qputenv("SECRET_FILE_TEST_PATH", qgetenv("HOME") + "/passwords");
    qputenv("SECRET_FILE_TEST_PASSWORD", "opens it");
}

QByteArray settings() {
    QFile file(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/quillory/settings.json"));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

class FirstStart : public ChatStory {
  protected:
    void SetUp() override {
        ChatStory::SetUp();
        RealDesktop::setAccessibilityEnabled(false);
        usePasswordStore();
        qputenv("QUILLORY_MODEL_SERVICE", m_model.address());
        // The windows can be read by this test from the start; what the desktop says of accessibility stays as it is.
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        m_tree.emplace();
    }
    /// Walks through the window with the Tab key until something has the focus whose name ends so.
    bool tabTo(const QString &name) {
        QString focused;
        return waitUntil([&] {
            focused = m_tree->focusedName();
            if (focused.endsWith(name)) {
                return true;
            }
            keyboard::tap("Tab");
            waitUntil([&] { return m_tree->focusedName() != focused; }, 500);
            return false;
        });
    }
    /// Puts the focus into the message box of the window that is active.
    bool tabIntoBox() {
        return waitUntil(
            [&] {
                if (!m_page.state().focused) {
                    keyboard::tap("Tab");
                }
                return waitUntil([&] { return m_page.state().focused; }, 1500); // the page may tell of it late
            },
            30'000);
    }
    bool isRewriteReady(const QString &draft) const {
        const auto asked = m_model.questions();
        const QString log = Assistant::log();
        const auto last = log.lastIndexOf(QStringLiteral("prefetch started ("));
        // A slow machine may pause long enough for a part of it to be asked about first.
        return !asked.empty() && asked.back().draft() == draft &&
               log.lastIndexOf(QStringLiteral(" complete (")) > last &&
               log.lastIndexOf(QStringLiteral("panel visible")) > last;
    }

    std::optional<AccessibleTree> m_tree;
};
INSTANTIATE_TEST_SUITE_P(In, FirstStart, everyBrowser, testing::PrintToStringParamName());

/// From a fresh home, without a key, with accessibility off and the browser running already, to the first accepted
/// rewrite, with nothing but the keyboard.
TEST_P(FirstStart, LeadsToTheFirstRewriteByKeyboardAlone) {
    const QString answer = QStringLiteral("Hello, can you please send me the price list?");
    m_model.willAnswer(answer, Manner::answersAtOnce);
    startBrowser({.kind = GetParam(), .forceAccessibility = false});
    ASSERT_TRUE(waitUntil([&] { return !m_page.state().address.isEmpty(); }, 60'000));
    const ChildProcess program({QUILLORY_PROGRAM});
    ASSERT_TRUE(waitUntil([] { return isActive(setupTitle); }, 20'000));
    EXPECT_TRUE(isUp(settingsTitle));
    EXPECT_EQ(run({QUILLORY_PROGRAM, "setup"}), 0) << "the first one comes to the front instead";
    EXPECT_NE(run({QUILLORY_PROGRAM, "doctor"}, Output::dropped), 0);

    ASSERT_TRUE(waitUntil([&] { return m_tree->focusedName() == QStringLiteral("API key"); }));
    keyboard::type(QStringLiteral("made-up-key"));
    keyboard::tap("Return");
    ASSERT_TRUE(waitUntil([] { return settings().contains("openRouterAPIKeyInPasswordStore"); }));
    ASSERT_TRUE(tabTo(QStringLiteral("Accessibility: Switch On")));
    keyboard::tap("space");
    ASSERT_TRUE(logged(QStringLiteral("accessibility trusted -> true")));
    // The set-up asks for that; how a user closes a browser and opens it again is not ours to test.
    m_browser.reset();
    startBrowser({.kind = GetParam(), .forceAccessibility = false});
    ASSERT_TRUE(waitUntil([&] { return !m_page.state().address.isEmpty(); }, 60'000));
    EXPECT_TRUE(closeWithEscape(setupTitle));
    EXPECT_TRUE(closeWithEscape(settingsTitle));

    ASSERT_TRUE(bringUp(pageTitle));
    ASSERT_TRUE(tabIntoBox());
    const QString draft = QStringLiteral("helo can u send me the price list");
    keyboard::type(draft);
    ASSERT_TRUE(waitUntil([&] { return isRewriteReady(draft); }, 20'000));
    EXPECT_EQ(m_model.questions().back().authorization, QStringLiteral("Bearer made-up-key"));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(answer));
    EXPECT_EQ(run({QUILLORY_PROGRAM, "doctor"}), 0);
    EXPECT_FALSE(Assistant::log().contains(QStringLiteral("made-up")) || settings().contains("made-up"));
}

TEST(BrokenSetup, LeavesTheOfferToThePrompt) {
    RealDesktop::setAccessibilityEnabled(false);
    qputenv("OPENROUTER_API_KEY", "made-up-key");
    const QString program = qEnvironmentVariable("HOME") + QStringLiteral("/quillory");
    ASSERT_TRUE(QFile::copy(QStringLiteral(QUILLORY_PROGRAM), program));
    const ChildProcess started({program.toStdString()});
    ASSERT_TRUE(waitUntil([] { return Assistant::timesLogged(QStringLiteral("launched, ")) == 1; }));
    ASSERT_TRUE(QFile::remove(program) && QFile::copy(QStringLiteral("/bin/false"), program));
    ASSERT_TRUE(waitUntil([] { return isActive(promptTitle); }));
    keyboard::tap("Return");
    EXPECT_TRUE(waitUntil([] { return Assistant::timesLogged(QStringLiteral("trusted -> true")) == 1; }));
}

} // namespace

} // namespace quillory::test
