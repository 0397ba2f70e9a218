// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/URLSession.h"
#include "Updates/Installing.h"

#include <cerrno>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::desktop::BundleInstaller;
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

TEST_F(Installing, LeavesTheOldOneWhereTheNewOneWasChangedOrCannotStart) {
    const std::string noStart = "The new version does not start on this computer.";
    const auto signProgram = [this](const QByteArray &program) {
        writeFile(found + u"/quillory"_s, program, 0755);
        platform::desktop::signBundle(found, u"2"_s, teamKey());
    };
    const std::pair<std::function<void()>, std::string> attacks[] = {
        {[&] { writeFile(found + u"/Info.json"_s, "{}"); }, "not genuine"},
        {[&] { chmod(qPrintable(found + u"/Info.json"_s), 04777); }, "not genuine"},
        {[&] { makeSignedBundle(found, 9, platform::desktop::SigningKey::generated(team)); }, "not genuine"},
        {[&] { QFile::link(u"/etc/passwd"_s, found + u"/link"_s); },
         "A folder holds something that does not belong there: Invalid argument."},
        {[&] { QDir(found).removeRecursively(); },
         "The folder " + found.toStdString() + " could not be opened: No such file or directory."},
        {[&] { signProgram("#!/lib/that/is/missing\n"); }, noStart},
        {[&] { signProgram("#!/bin/sh\nexit 127\n"); }, noStart},
        {[&] { signProgram("#!/bin/sh\nkill -SEGV $$\n"); }, noStart},
    };
    for (const auto &[change, why] : attacks) {
        QDir(found).removeRecursively();
        makeSignedBundle(found, 2);
        change();
        EXPECT_EQ(failure(), why);
        EXPECT_EQ(vouchedVersion(target), "1") << why;
        expectClean();
    }
}

TEST_F(Installing, TakesBackWhatWasChangedBetweenTheCheckAndTheExchange) {
    const struct {
        const char *attack;
        std::function<void()> change;
    } attacks[] = {
        {"another program in the copy",
         [&] { writeFile(applications + u"/.Quillory.app.new/quillory"_s, "#!/bin/sh\nexit 9\n", 0755); }},
        {"another bundle in the copy's place",
         [&] {
             QDir(folder.filePath(u"gone"_s)).removeRecursively();
             QDir().rename(applications + u"/.Quillory.app.new"_s, folder.filePath(u"gone"_s));
             makeSignedBundle(applications + u"/.Quillory.app.new"_s, 3);
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
            EXPECT_EQ(status, failed) << attack;
            EXPECT_EQ(vouchedVersion(target), "1") << attack << ", exchange " << exchange;
            expectClean();
        }
    }
}

TEST_F(Installing, IsDoneByOneProcessAtATime) {
    const int lock =
        open(QFile::encodeName(applications + u"/.install.lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    EXPECT_EQ(failure(), "Another update is being installed.");
    QDir().mkpath(applications + u"/.Quillory.app.new"_s);
    recover();
    EXPECT_THAT(left(), testing::Contains(u".Quillory.app.new"_s)) << "that is the other one's";
    close(lock);
    EXPECT_EQ(failure(), "");
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
    QDir().rename(applications, folder.filePath(u"elsewhere"_s));
    QFile::link(folder.filePath(u"elsewhere"_s), applications);
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
