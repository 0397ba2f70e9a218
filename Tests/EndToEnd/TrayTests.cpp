// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/Assistant.h"
#include "EndToEnd/Keyboard.h"
#include "EndToEnd/StatusNotifierHost.h"
#include "RealDesktop/RealDesktop.h"

#include <QProcess>

#include <gmock/gmock.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

const auto menuAtFirst =
    u"✓ Suggestions Enabled | Compare Two Models | - | Settings… | Check for Updates… | - | Quit Quillory"_s;

/// Long enough for a machine that has much else to do.
template <typename Condition> bool eventually(Condition condition) {
    return waitUntil(condition, 60'000);
}

/// The built program with a key in its environment.
ChildProcess started() {
    qputenv("OPENROUTER_API_KEY", "made-up-key");
    return ChildProcess({QUILLORY_PROGRAM});
}

QByteArray setting(const char *key) {
    QProcess reader;
    reader.start(QStringLiteral(QUILLORY_PROGRAM), {u"defaults"_s, u"read"_s, QString::fromLatin1(key)});
    reader.waitForFinished();
    return reader.readAllStandardOutput().trimmed();
}

bool windowIsUp() {
    return run({"xdotool", "search", "--onlyvisible", "--name", "^Quillory$"}, Output::dropped) == 0;
}

bool windowIsActive() {
    return run({"sh", "-c", "xdotool getactivewindow getwindowname | grep -qx Quillory"}, Output::dropped) == 0;
}

TEST(Tray, MenuIsReadAndChosenFromByTheDesktop) {
    ChildProcess program = started();
    StatusNotifierHost tray;
    sleepBriefly();
    ASSERT_TRUE(tray.appearInSteps()); // the panel may start after the program and piece by piece, and again
    ASSERT_TRUE(tray.hasItem());
    tray.vanish();
    tray.appear();
    ASSERT_TRUE(tray.hasItem());
    EXPECT_TRUE(eventually([&] { return tray.openedMenu() == menuAtFirst; })) << tray.openedMenu().toStdString();
    tray.choose(u"Suggestions Enabled"_s);
    tray.choose(u"Compare Two Models"_s);
    EXPECT_TRUE(eventually([] { return setting("enabled") == "false" && setting("compareMode") == "true"; }));
    EXPECT_TRUE(tray.openedMenu().startsWith(u"Suggestions Enabled | ✓ Compare Two Models"_s));
    tray.choose(u"Settings…"_s);
    EXPECT_TRUE(eventually(windowIsUp));
    RealDesktop::setAccessibilityEnabled(false);
    EXPECT_TRUE(eventually([&] { return tray.openedMenu().contains(u"Grant Accessibility Access…"_s); }));
    tray.choose(u"Quit Quillory"_s);
    EXPECT_TRUE(eventually([&] { return !program.isRunning(); }));
    EXPECT_EQ(program.end(), 0);
}

TEST(Tray, EmbedsTheIconWhereOnlyTheOldKindIs) {
    ChildProcess program = started();
    ChildProcess panel({"trayer", "--edge", "top", "--align", "left", "--widthtype", "request"}, Output::dropped);
    EXPECT_TRUE(eventually([&] {
        keyboard::click({12, 12}); // opens the menu, once there is something to click on
        keyboard::tap("ctrl+q");
        return !program.isRunning();
    }));
    EXPECT_EQ(program.end(), 0);
}

TEST(Settings, AreMadeByKeyboardAlone) {
    ChildProcess program = started();
    StatusNotifierHost tray;
    tray.appear();
    ASSERT_TRUE(tray.hasItem());
    EXPECT_EQ(run({QUILLORY_PROGRAM}, Output::dropped), 0) << "a second start shows the window of the first";
    ASSERT_TRUE(eventually(windowIsActive));
    const auto becomes = [](const char *key, const QByteArray &value) {
        EXPECT_TRUE(eventually([&] { return setting(key).contains(value); })) << key << " is " << setting(key).data();
    };
    struct Choice {
        std::vector<const char *> keys;
        const char *setting;
        const char *value;
    };
    for (const auto &[keys, key, value] :
         std::vector<Choice>{{{"alt+e"}, "enabled", "false"},
                             {{"alt+s"}, "assistantMode", "false"},
                             {{"alt+t", "Down", "Down"}, "tone", "Concise"},
                             {{"alt+d", "Right"}, "debounceMs", "550"},
                             {{"alt+m", "Up", "Tab", "shift+Tab", "Up"}, "minChars", "10"}}) {
        std::ranges::for_each(keys, keyboard::tap);
        becomes(key, value);
    }
    keyboard::tap("alt+b");
    keyboard::tap("alt+y");
    keyboard::type(u"A shop"_s);
    becomes("businessProfile", "A shop");
    keyboard::tap("Escape");
    EXPECT_TRUE(eventually([] { return !windowIsUp(); }));
    EXPECT_TRUE(program.isRunning());
}

} // namespace
} // namespace quillory::test
