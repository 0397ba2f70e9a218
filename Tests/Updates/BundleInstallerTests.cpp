// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Platform/URLSession.h"
#include "Updates/SampleBundle.h"
#include "Updates/TracedChild.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <sched.h>
#include <set>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using platform::FileError;
using platform::desktop::BundleInstaller;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto name = "Quillory.app";
constexpr int failed = 1;
constexpr int refused = 2;
constexpr int notAllowed = 3;
constexpr int broken = 4;

struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Version 1 is installed, and version 2 has been unpacked.
class Installing : public testing::Test {
  protected:
    Installing() {
        makeSignedBundle(found, 2);
        reset();
    }
    void reset() const {
        if (vouchedVersion(target) == "1" && left().size() <= 2) {
            return;
        }
        QDir(applications).removeRecursively();
        QDir().mkpath(applications);
        chmod(QFile::encodeName(applications).constData(), 0700);
        makeSignedBundle(target, 1);
    }
    static void approve(const QString &bundle) {
        if (vouchedVersion(bundle) == "none") {
            throw Refusal("not genuine");
        }
    }
    /// An exit status.
    [[nodiscard]] int install() const {
        try {
            BundleInstaller(applications, signing).install(found, name, approve, {});
            return 0;
        } catch (const FileError &) {
            return failed;
        } catch (const Refusal &) {
            return refused;
        }
    }
    [[nodiscard]] std::string failure() const {
        try {
            BundleInstaller(applications, signing).install(found, name, approve, {});
            return {};
        } catch (const FileError &error) {
            return error.what();
        }
    }
    [[nodiscard]] QStringList left() const {
        return QDir(applications).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    /// What stands under the name must be whole, signed and startable, whichever of the two it is.
    void expectStartable(const QString &bundle, int count) const {
        const std::string version = vouchedVersion(bundle);
        EXPECT_THAT(version, AnyOf("1", "2")) << "before call " << count;
        EXPECT_EQ(std::to_string(started(bundle)), version) << "before call " << count;
    }
    void expectClean() const {
        EXPECT_THAT(left(), ElementsAre(QStringLiteral(".install.lock"), QStringLiteral("Quillory.app")));
    }

    platform::desktop::LinuxCodeSigning signing = trustingTeam();
    QTemporaryDir folder{folderTemplate()};
    QString applications = folder.filePath(QStringLiteral("Applications"));
    QString target = applications + QStringLiteral("/Quillory.app");
    QString found = folder.filePath(QStringLiteral("work/Quillory.app"));
};

bool isExchange(const TracedCall &call) {
    return call.number == SYS_renameat2 && call.arguments[4] == RENAME_EXCHANGE;
}

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

TEST_F(Installing, StartsAndExchangesNothingThatWasNotApproved) {
    const auto refuse = [](const QString &) { throw Refusal("not genuine"); };
    int before = 0;
    int dangerous = 0;
    runTraced(
        [&] {
            try {
                BundleInstaller(applications, signing).install(found, name, refuse, {});
            } catch (const Refusal &) {
            }
            return 0;
        },
        [&](const TracedCall &call) {
            ++before;
            const std::set<unsigned long long> starting{SYS_clone, SYS_clone3, SYS_fork, SYS_vfork};
            dangerous += starting.contains(call.number) || isExchange(call) ? 1 : 0;
            return goOn;
        });
    EXPECT_GT(before, 100);
    EXPECT_EQ(dangerous, 0);
    EXPECT_EQ(vouchedVersion(target), "1");
}

TEST_F(Installing, BringsEverythingToTheDiskBeforeTheExchangeAndTheFolderBeforeTheOldOneGoes) {
    QStringList wanted{applications + QStringLiteral("/.Quillory.app.new")};
    for (QDirIterator files(found, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
         files.hasNext();) {
        wanted += wanted.first() + files.next().sliced(found.size());
    }
    QStringList synced;
    bool isExchanged = false;
    runTraced([&] { return install(); },
              [&](const TracedCall &call) {
                  if (call.number == SYS_fsync) {
                      synced += QFile::symLinkTarget(
                          QStringLiteral("/proc/%1/fd/%2").arg(call.process).arg(call.arguments[0]));
                  } else if (isExchange(call)) {
                      EXPECT_THAT(synced, testing::UnorderedElementsAreArray(wanted));
                      isExchanged = true;
                  } else if (isExchanged && call.number == SYS_unlinkat) {
                      EXPECT_EQ(synced.last(), applications);
                  }
                  return goOn;
              });
    EXPECT_TRUE(isExchanged);
}

/// What an install that was ended may have left, of versions 1 (the old one) and 2.
class Interrupted : public Installing {
  protected:
    QString staged = applications + QStringLiteral("/.Quillory.app.new");
    QString previous = target + QStringLiteral(".previous");
    struct State {
        const char *what;
        std::function<void()> make;
        std::string version;
        bool isClean;
    };
    const std::vector<State> states{
        {"ended after the exchange", [this] { makeSignedBundle(staged, 3); }, "1", true},
        {"changed in the instant before it",
         [this] {
             QDir().rename(target, staged);
             makeBundle(target, 2);
         },
         "1", true},
        {"the same where names cannot be exchanged",
         [this] {
             QDir().rename(target, previous);
             makeBundle(target, 2);
         },
         "1", true},
        {"ended between the two renames there",
         [this] {
             QDir().rename(target, previous);
             makeSignedBundle(staged, 2);
         },
         "1", true},
        {"none of them is anybody's we know",
         [this] {
             makeBundle(staged, 3);
             QFile::remove(target + QStringLiteral("/Manifest"));
         },
         "none", false},
    };
    void make(const State &state) const {
        QDir(applications).removeRecursively();
        QDir().mkpath(applications);
        chmod(QFile::encodeName(applications).constData(), 0700);
        makeSignedBundle(target, 1);
        state.make();
    }
    int recover() const {
        BundleInstaller(applications, signing).recover(name);
        return 0;
    }
};

TEST_F(Interrupted, GivesTheNameBackToTheGenuineOneOfTwo) {
    for (const State &state : states) {
        make(state);
        recover();
        EXPECT_EQ(vouchedVersion(target), state.version) << state.what;
        EXPECT_EQ(left().size(), state.isClean ? 2 : 3) << state.what << ": what may be the user's is not thrown away";
    }
}

TEST_F(Interrupted, MayBeInterruptedAgainAnywhere) {
    int calls = 0;
    const auto interrupt = [&](const State &state, Verdict exchange, Verdict fault) {
        int count = 1;
        for (int at = 1; count >= at - 1; ++at) {
            make(state);
            count = 0;
            runTraced([&] { return recover(); },
                      [&](const TracedCall &call) {
                          const bool isHere = changesDisk(call) && ++count == at;
                          return isHere ? fault : (isExchange(call) ? exchange : goOn);
                      });
            recover();
            EXPECT_EQ(vouchedVersion(target), state.version) << state.what << ", before change " << at;
            calls += count >= at ? 1 : 0;
        }
    };
    for (const State &state : states) {
        for (const Verdict exchange : {goOn, EINVAL}) {
            interrupt(state, exchange, killed);
            interrupt(state, exchange, EIO);
        }
    }
    EXPECT_GT(calls, 200);
}

TEST_F(Installing, LeavesAStartableBundleWhereverItIsKilled) {
    int calls = 0;
    for (int at = 1;; ++at) {
        reset();
        const int status = runTraced([&] { return install(); },
                                     [&](const TracedCall &call) { return call.count == at ? killed : goOn; });
        if (status != killedStatus) {
            EXPECT_EQ(status, 0);
            break;
        }
        calls = at;
        expectStartable(target, at);
        BundleInstaller(applications, signing).recover(name);
        EXPECT_NE(vouchedVersion(target), "none") << "before call " << at;
        EXPECT_FALSE(left().contains(QStringLiteral(".Quillory.app.new"))) << "before call " << at;
    }
    EXPECT_GT(calls, 200);
    RecordProperty("points", calls);
    std::cout << "killed before each of " << calls << " system calls\n";
}

TEST_F(Installing, LeavesOneOfTheTwoWhereNamesCannotBeExchanged) {
    int calls = 0;
    for (int at = 1;; ++at) {
        reset();
        bool counts = false;
        int count = 0;
        const int status = runTraced([&] { return install(); },
                                     [&](const TracedCall &call) {
                                         if (isExchange(call)) {
                                             counts = true;
                                             return EINVAL;
                                         }
                                         return counts && ++count == at ? killed : goOn;
                                     });
        if (status != killedStatus) {
            EXPECT_EQ(status, 0);
            break;
        }
        calls = at;
        expectStartable(QFile::exists(target) ? target : target + QStringLiteral(".previous"), at);
        BundleInstaller(applications, signing).recover(name);
        expectStartable(target, at);
        expectClean();
    }
    EXPECT_GT(calls, 50);
    std::cout << "killed before each of " << calls << " system calls of the fall-back\n";
}

TEST_F(Installing, IsDoneOrNotDoneWhenTheDiskFailsAtAnyWrite) {
    const struct {
        int error;
        bool lasts;
        Verdict exchange;
    } faults[] = {{ENOSPC, false, goOn}, {EROFS, true, goOn}, {EACCES, false, EINVAL}, {EIO, true, EINVAL}};
    for (const auto &[error, lasts, exchange] : faults) {
        int tried = 0;
        for (int at = 1;; ++at) {
            reset();
            int count = 0;
            const int status =
                runTraced([&] { return install(); },
                          [&](const TracedCall &call) {
                              if (isExchange(call) && exchange != goOn) {
                                  return exchange;
                              }
                              count += changesDisk(call) ? 1 : 0;
                              return changesDisk(call) && (count == at || (lasts && count > at)) ? error : goOn;
                          });
            if (count < at) {
                EXPECT_EQ(status, 0);
                break;
            }
            tried = at;
            if (!lasts) {
                EXPECT_EQ(vouchedVersion(target), status == failed ? "1" : "2") << "write " << at;
            }
            BundleInstaller(applications, signing).recover(name);
            expectStartable(target, at);
            EXPECT_FALSE(left().contains(QStringLiteral(".Quillory.app.new"))) << "write " << at;
        }
        EXPECT_GT(tried, 50);
        std::cout << "failed each of " << tried << (lasts ? " writes and all after it\n" : " writes\n");
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

TEST_F(Installing, ChangesNothingOnADiskThatIsReallyFull) {
    const auto onDisk = [this](int kilobytes) {
        QDir(applications).removeRecursively();
        QDir().mkpath(applications);
        const std::string size = "mode=700,size=" + std::to_string(kilobytes) + "k";
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", qPrintable(applications), "tmpfs", 0, size.c_str()) != 0) {
            return notAllowed;
        }
        makeSignedBundle(target, 1);
        const int status = install();
        const bool isWhole = vouchedVersion(target) == (status == 0 ? "2" : "1");
        return isWhole && !left().contains(QStringLiteral(".Quillory.app.new")) ? status : broken;
    };
    constexpr int largest = 160;
    int failures = 0;
    for (int kilobytes = 44; kilobytes <= largest; kilobytes += 4) {
        const int status = runTraced([&] { return onDisk(kilobytes); }, [](const TracedCall &) { return goOn; });
        if (status == notAllowed) {
            GTEST_SKIP() << "mounting a small disk is not allowed here; every write has been let fail above";
        }
        ASSERT_THAT(status, AnyOf(0, failed)) << kilobytes;
        failures += status;
        EXPECT_TRUE(kilobytes < largest || status == 0);
    }
    EXPECT_GT(failures, 3);
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
