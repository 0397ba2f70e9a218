// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Updates/BundleInstaller.h"
#include "Updates/SampleBundle.h"
#include "Updates/TracedChild.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <iostream>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

inline bool isExchange(const TracedCall &call) {
    return call.number == SYS_renameat2 && call.arguments[4] == RENAME_EXCHANGE;
}

/// Version 1 is installed, and version 2 has been unpacked.
class Installing : public testing::Test {
  protected:
    Installing() {
        makeSignedBundle(found, 2);
        reset();
    }
    void reset() const {
        if (vouchedVersion(target) != "1" || left().size() > 2) {
            makeAnew();
        }
    }
    void makeAnew() const {
        QDir(applications).removeRecursively();
        QDir().mkpath(applications);
        chmod(QFile::encodeName(applications).constData(), 0700);
        makeSignedBundle(target, 1);
    }
    static void approve(const QString &bundle) {
        if (vouchedVersion(bundle) == "none") {
            throw std::runtime_error("not genuine");
        }
    }
    static constexpr auto name = "Quillory.app";
    /// Why an install fails; empty when it does not.
    [[nodiscard]] std::string failure(void (*approval)(const QString &) = approve) const {
        try {
            platform::desktop::BundleInstaller(applications, signing).install(found, name, approval, {});
            return {};
        } catch (const std::runtime_error &error) {
            return error.what();
        }
    }
    /// An exit status.
    static constexpr int failed = 1;
    [[nodiscard]] int install(void (*approval)(const QString &) = approve) const {
        return failure(approval).empty() ? 0 : failed;
    }
    int recover() const {
        platform::desktop::BundleInstaller(applications, signing).recover(name);
        return 0;
    }
    /// Kills an install before each of its system calls or, where names cannot be exchanged, before each after the
    /// refused exchange, and looks at what it left. Returns how many calls there were.
    int killEverywhere(bool canExchange, const std::function<void(int)> &check) const {
        for (int at = 1;; ++at) {
            reset();
            bool counts = canExchange;
            int count = 0;
            const int status = runTraced([&] { return install(); },
                                         [&](const TracedCall &call) {
                                             if (!canExchange && isExchange(call)) {
                                                 counts = true;
                                                 return EINVAL;
                                             }
                                             return counts && ++count == at ? killed : goOn;
                                         });
            if (status != killedStatus) {
                EXPECT_EQ(status, 0);
                std::cout << "killed before each of " << at - 1 << " system calls\n";
                return at - 1;
            }
            check(at);
        }
    }
    [[nodiscard]] QStringList left() const {
        return QDir(applications).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    /// What stands under the name must be whole, signed and startable, whichever of the two it is.
    void expectStartable(const QString &bundle, int count) const {
        const std::string version = vouchedVersion(bundle);
        EXPECT_THAT(version, testing::AnyOf("1", "2")) << "before call " << count;
        EXPECT_EQ(std::to_string(started(bundle)), version) << "before call " << count;
    }
    void expectClean() const { EXPECT_THAT(left(), testing::ElementsAre(u".install.lock"_s, u"Quillory.app"_s)); }

    platform::desktop::LinuxCodeSigning signing = trustingTeam();
    QTemporaryDir folder{folderTemplate()};
    QString applications = folder.filePath(u"Applications"_s);
    QString target = applications + u"/Quillory.app"_s;
    QString found = folder.filePath(u"work/Quillory.app"_s);
};

} // namespace quillory::test
