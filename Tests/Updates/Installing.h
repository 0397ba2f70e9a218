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

#include <cstdio>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace quillory::test {

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
    static constexpr auto name = "Quillory.app";
    // How an install ends.
    static constexpr int failed = 1;
    static constexpr int refused = 2;
    /// An exit status.
    [[nodiscard]] int install() const {
        try {
            platform::desktop::BundleInstaller(applications, signing).install(found, name, approve, {});
            return 0;
        } catch (const platform::FileError &) {
            return failed;
        } catch (const Refusal &) {
            return refused;
        }
    }
    [[nodiscard]] std::string failure() const {
        try {
            platform::desktop::BundleInstaller(applications, signing).install(found, name, approve, {});
            return {};
        } catch (const platform::FileError &error) {
            return error.what();
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
    void expectClean() const {
        EXPECT_THAT(left(), testing::ElementsAre(QStringLiteral(".install.lock"), QStringLiteral("Quillory.app")));
    }

    platform::desktop::LinuxCodeSigning signing = trustingTeam();
    QTemporaryDir folder{folderTemplate()};
    QString applications = folder.filePath(QStringLiteral("Applications"));
    QString target = applications + QStringLiteral("/Quillory.app");
    QString found = folder.filePath(QStringLiteral("work/Quillory.app"));
};

inline bool isExchange(const TracedCall &call) {
    return call.number == SYS_renameat2 && call.arguments[4] == RENAME_EXCHANGE;
}

} // namespace quillory::test
