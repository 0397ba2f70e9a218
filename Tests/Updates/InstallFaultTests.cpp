// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updates/Installing.h"

#include <QDirIterator>

#include <cerrno>
#include <iostream>
#include <set>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;

TEST_F(Installing, StartsAndExchangesNothingThatWasNotApproved) {
    const auto refuse = [](const QString &) { throw std::runtime_error("not genuine"); };
    int before = 0;
    int dangerous = 0;
    const int status =
        runTraced([&] { return install(refuse); },
                  [&](const TracedCall &call) {
                      ++before;
                      const std::set<unsigned long long> starting{SYS_clone, SYS_clone3, SYS_fork, SYS_vfork};
                      dangerous += starting.contains(call.number) || isExchange(call) ? 1 : 0;
                      return goOn;
                  });
    EXPECT_EQ(status, failed);
    EXPECT_GT(before, 100);
    EXPECT_EQ(dangerous, 0);
    EXPECT_EQ(vouchedVersion(target), "1");
}

TEST_F(Installing, BringsEverythingToTheDiskBeforeTheExchangeAndTheFolderBeforeTheOldOneGoes) {
    QStringList wanted{applications + u"/.Quillory.app.new"_s};
    for (QDirIterator files(found, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
         files.hasNext();) {
        wanted += wanted.first() + files.next().sliced(found.size());
    }
    QStringList synced;
    bool isExchanged = false;
    runTraced([&] { return install(); },
              [&](const TracedCall &call) {
                  if (call.number == SYS_fsync) {
                      synced += QFile::symLinkTarget(u"/proc/%1/fd/%2"_s.arg(call.process).arg(call.arguments[0]));
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
    QString staged = applications + u"/.Quillory.app.new"_s;
    QString previous = target + u".previous"_s;
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
             QFile::remove(target + u"/Manifest"_s);
         },
         "none", false},
    };
    void make(const State &state) const {
        makeAnew();
        state.make();
    }
};

TEST_F(Interrupted, GivesTheNameBackToTheGenuineOneOfTwoWhereverItIsInterruptedAgain) {
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
        EXPECT_EQ(left().size(), state.isClean ? 2 : 3) << state.what << ": what may be the user's is not thrown away";
    };
    for (const State &state : states) {
        for (const Verdict exchange : {goOn, EINVAL}) {
            interrupt(state, exchange, killed);
            interrupt(state, exchange, EIO);
        }
    }
    EXPECT_GT(calls, 150);
}

TEST_F(Installing, LeavesAStartableBundleWhereverItIsKilled) {
    const int calls = killEverywhere(true, [&](int at) {
        expectStartable(target, at);
        recover();
        EXPECT_NE(vouchedVersion(target), "none") << "before call " << at;
        EXPECT_FALSE(left().contains(u".Quillory.app.new"_s)) << "before call " << at;
    });
    EXPECT_GT(calls, 200);
}

TEST_F(Installing, LeavesOneOfTheTwoWhereNamesCannotBeExchanged) {
    const int calls = killEverywhere(false, [&](int at) {
        expectStartable(QFile::exists(target) ? target : target + u".previous"_s, at);
        recover();
        expectStartable(target, at);
        expectClean();
    });
    EXPECT_GT(calls, 50);
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
            recover();
            expectStartable(target, at);
            EXPECT_FALSE(left().contains(u".Quillory.app.new"_s)) << "write " << at;
        }
        EXPECT_GT(tried, 40);
        std::cout << "failed each of " << tried << (lasts ? " writes and all after it\n" : " writes\n");
    }
}

} // namespace
} // namespace quillory::test
