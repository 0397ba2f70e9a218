// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Accessibility.h"
#include "Platform/Linux/Doctor/Autostart.h"
#include "Platform/Linux/Doctor/LinuxDoctor.h"
#include "Platform/Linux/X11/Keys/X11Keyboard.h"
#include "Platform/Linux/X11/X11Connection.h"
#include "RealDesktop/ChildProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using namespace quillory::test;
using namespace platform;

struct LinuxDoctorTest : testing::Test {
    desktop::LinuxDoctor doctor;
};

TEST_F(LinuxDoctorTest, WritesAnEntryThatStartsTheProgramAtLogin) {
    const DesktopFacts facts = doctor.examine({});
    EXPECT_EQ(facts.windowManager, QStringLiteral("Openbox"));
    EXPECT_FALSE(facts.hasTray || facts.hasStatusNotifier || facts.startsAtLogin);
    EXPECT_TRUE(doctor.setStartsAtLogin(true));
    EXPECT_TRUE(doctor.examine({}).startsAtLogin);
    const std::string entry = qEnvironmentVariable("XDG_CONFIG_HOME").toStdString() + "/autostart/quillory.desktop";
    EXPECT_EQ(run({"desktop-file-validate", entry}), 0);
    EXPECT_TRUE(doctor.setStartsAtLogin(false));
    EXPECT_FALSE(doctor.examine({}).startsAtLogin);
}

TEST_F(LinuxDoctorTest, StartsAtLoginWhatIsStillThereAfterAnUpdate) {
    const QTemporaryDir folder;
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(folder.path(), link));
    qputenv("XDG_DATA_HOME", link.toUtf8());
    const QString applications = folder.filePath(QStringLiteral("quillory/Applications/"));
    const QString own = applications + QStringLiteral("Quillory.app/quillory");
    QDir().mkpath(QFileInfo(own).path());
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/true"), own));
    const QString elsewhere = folder.filePath(QStringLiteral("quillory"));
    const struct {
        QString running;
        QString path;
    } cases[] = {
        {own, own},
        {own + QStringLiteral(" (deleted)"), own},
        {applications + QStringLiteral(".Quillory.app.new/quillory (deleted)"), own},
        {applications + QStringLiteral("Quillory.app.previous/quillory (deleted)"), own},
        {elsewhere + QStringLiteral(" (deleted)"), elsewhere},
    };
    for (const auto &[running, path] : cases) {
        EXPECT_EQ(desktop::autostart::program(running), path) << running.toStdString();
    }
    EXPECT_EQ(desktop::autostart::programAtLogin(own, QStringLiteral("/bin/true")), QStringLiteral("/bin/true"));
    EXPECT_EQ(desktop::autostart::programAtLogin(own, QStringLiteral("/etc/passwd")), own) << "it is no program";
    EXPECT_EQ(desktop::autostart::programAtLogin(elsewhere, QStringLiteral("/bin/true")), elsewhere);
    qputenv("XDG_DATA_HOME", before);
}

TEST_F(LinuxDoctorTest, NoticesAKeyThatAnotherProgramHasAndTakesNone) {
    EXPECT_EQ(doctor.examine({}).canGrabTab, true);
    const auto other = desktop::X11Connection::open();
    const desktop::X11Keyboard keyboard(*other);
    xcb_grab_key(other->get(), 0, other->root(), XCB_MOD_MASK_2, keyboard.keyCodes(keyCode::tab).front(),
                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    other->sync();
    const DesktopFacts facts = doctor.examine({});
    EXPECT_EQ(facts.canGrabTab, false);
    EXPECT_EQ(facts.canGrabEscape, true);
    for (const xcb_keycode_t code : keyboard.keyCodes(keyCode::escape)) {
        const auto asked =
            xcb_grab_key_checked(other->get(), 0, other->root(), 0, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        EXPECT_EQ(desktop::X11Reply<xcb_generic_error_t>(xcb_request_check(other->get(), asked)), nullptr);
    }
}

} // namespace
