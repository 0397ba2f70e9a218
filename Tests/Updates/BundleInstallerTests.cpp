// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/URLSession.h"
#include "Updates/Installing.h"

#include <cerrno>
#include <sys/file.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using platform::desktop::BundleInstaller;
using testing::AnyOf;
using testing::HasSubstr;

TEST_F(Installing, ReplacesTheBundleAndLeavesNothingElse) {
    EXPECT_EQ(install(), 0);
    EXPECT_EQ(vouchedVersion(target), "2");
    expectClean();
    QDir(target).removeRecursively();
    const auto withoutFlags = [](const TracedCall &call) { return call.number == SYS_renameat2 ? EINVAL : goOn; };
    EXPECT_EQ(runTraced([&] { return install(); }, withoutFlags), 0)
        << "where there is none yet, on a file system without exchange";
    EXPECT_EQ(vouchedVersion(target), "2");
}

TEST_F(Installing, LeavesTheOldOneWhereTheNewOneCannotStart) {
    for (const char *program : {"#!/lib/that/is/missing\n", "#!/bin/sh\nexit 127\n", "#!/bin/sh\nkill -SEGV $$\n"}) {
        writeFile(found + QStringLiteral("/quillory"), program, 0755);
        platform::desktop::signBundle(found, QStringLiteral("2"),
                                      platform::desktop::LinuxCodeSigning::hostArchitecture(), teamKey());
        EXPECT_EQ(failure(), "The new version does not start on this computer.") << program;
        EXPECT_EQ(vouchedVersion(target), "1");
        expectClean();
    }
}

TEST_F(Installing, TakesBackWhatWasChangedBetweenTheCheckAndTheExchange) {
    const struct {
        const char *attack;
        std::function<void()> change;
    } attacks[] = {
        {"another program in the copy",
         [&] { writeFile(applications + QStringLiteral("/.Quillory.app.new/quillory"), "#!/bin/sh\nexit 9\n", 0755); }},
        {"another bundle in the copy's place",
         [&] {
             QDir(folder.filePath(QStringLiteral("gone"))).removeRecursively();
             QDir().rename(applications + QStringLiteral("/.Quillory.app.new"),
                           folder.filePath(QStringLiteral("gone")));
             makeSignedBundle(applications + QStringLiteral("/.Quillory.app.new"), 3);
         }},
    };
    for (const auto &[attack, change] : attacks) {
        for (const Verdict exchange : {goOn, EINVAL}) {
            reset();
            const int status = runTraced([&] { return install(); },
                                         [&, once = true](const TracedCall &call) mutable {
                                             if (isExchange(call) && std::exchange(once, false)) {
                                                 change();
                                             }
                                             return isExchange(call) ? exchange : goOn;
                                         });
            EXPECT_THAT(status, AnyOf(failed, refused)) << attack;
            EXPECT_EQ(vouchedVersion(target), "1") << attack << ", exchange " << exchange;
            expectClean();
        }
    }
}

TEST_F(Installing, RefusesWhatWasChangedSinceItWasUnpacked) {
    const struct {
        const char *attack;
        std::function<void()> change;
        int status;
    } attacks[] = {
        {"a changed file", [&] { writeFile(found + QStringLiteral("/Info.json"), "{}"); }, refused},
        {"an extra file", [&] { writeFile(found + QStringLiteral("/extra"), ""); }, refused},
        {"a set-uid program",
         [&] { chmod(QFile::encodeName(found + QStringLiteral("/Info.json")).constData(), 04777); }, refused},
        {"a symbolic link", [&] { QFile::link(QStringLiteral("/etc/passwd"), found + QStringLiteral("/link")); },
         failed},
        {"another user's bundle under the path",
         [&] {
             QDir(found).removeRecursively();
             makeSignedBundle(found, 9, platform::desktop::SigningKey::generated(team));
         },
         refused},
        {"nothing there any more", [&] { QDir(found).removeRecursively(); }, failed},
    };
    for (const auto &[attack, change, status] : attacks) {
        QDir(found).removeRecursively();
        makeSignedBundle(found, 2);
        change();
        EXPECT_EQ(install(), status) << attack;
        EXPECT_EQ(vouchedVersion(target), "1") << attack;
        expectClean();
    }
}

TEST_F(Installing, IsDoneByOneProcessAtATime) {
    const int lock = open(QFile::encodeName(applications + QStringLiteral("/.install.lock")).constData(),
                          O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    EXPECT_EQ(failure(), "Another update is being installed.");
    QDir().mkpath(applications + QStringLiteral("/.Quillory.app.new"));
    BundleInstaller(applications, signing).recover(name);
    EXPECT_THAT(left(), testing::Contains(QStringLiteral(".Quillory.app.new"))) << "that is the other one's";
    close(lock);
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(vouchedVersion(target), "2");
    expectClean();
}

TEST_F(Installing, EndsWholeWhenSeveralProcessesInstallAtOnce) {
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        children.push_back(fork());
        if (children.back() == 0) {
            _exit(install());
        }
    }
    int succeeded = 0;
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_THAT(WEXITSTATUS(status), AnyOf(0, failed));
        succeeded += WEXITSTATUS(status) == 0 ? 1 : 0;
    }
    EXPECT_GE(succeeded, 1);
    EXPECT_EQ(vouchedVersion(target), "2");
    expectClean();
}

TEST_F(Installing, NeedsAFolderThatIsTheUsersAlone) {
    chmod(QFile::encodeName(applications).constData(), 0777);
    EXPECT_THAT(failure(), HasSubstr("can be changed by others"));
    chmod(QFile::encodeName(applications).constData(), 0700);
    chmod(QFile::encodeName(folder.path()).constData(), 0777);
    EXPECT_THAT(failure(), HasSubstr("can be changed by others")) << "who can change the folder above can replace it";
    chmod(QFile::encodeName(folder.path()).constData(), 0700);
    // For a user by name, which the mode shows as a right of the group; each entry is a tag, rights and a number.
    const std::array<std::uint16_t, 22> list{2, 0, 1, 7,    0, 0, 2, 7,    65534, 0, 4,
                                             0, 0, 0, 0x10, 7, 0, 0, 0x20, 0,     0, 0};
    if (setxattr(qPrintable(folder.path()), "system.posix_acl_access", list.data(), sizeof list, 0) == 0) {
        EXPECT_THAT(failure(), HasSubstr("can be changed by others")) << "by an access control list";
        removexattr(qPrintable(folder.path()), "system.posix_acl_access");
        chmod(QFile::encodeName(folder.path()).constData(), 0700);
    }
    QDir().rename(applications, folder.filePath(QStringLiteral("elsewhere")));
    QFile::link(folder.filePath(QStringLiteral("elsewhere")), applications);
    EXPECT_THAT(failure(), HasSubstr("could not be opened"));
}

TEST_F(Installing, StopsWhenAsked) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(BundleInstaller(applications, signing).install(found, name, approve, stop.get_token()),
                 platform::CancellationError);
    EXPECT_EQ(vouchedVersion(target), "1");
    expectClean();
}

} // namespace
} // namespace quillory::test
