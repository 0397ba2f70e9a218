// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/FileUserDefaults.h"
#include "RealDesktop/ChildProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <sys/file.h>
#include <sys/resource.h>
#include <thread>

namespace quillory::test {

using namespace Qt::StringLiterals;

using platform::desktop::FileUserDefaults;
using platform::desktop::Saving;
using testing::internal::CaptureStderr;

namespace {
const auto others = QFile::Permissions(0x77);

QByteArray capturedStderr() {
    return QByteArray::fromStdString(testing::internal::GetCapturedStderr());
}

class FileUserDefaultsTest : public testing::Test {
  protected:
    [[nodiscard]] QByteArray onDisk(const QString &name = u"settings.json"_s) const {
        QFile file(folder + u'/' + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void putOnDisk(const QByteArray &bytes) const {
        QDir().mkpath(folder);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    [[nodiscard]] QStringList keptAside() const { return QDir(folder).entryList({u"settings.json.broken-*"_s}); }

    QTemporaryDir root;
    const QString folder = root.filePath(u"config/quillory"_s);
    const QString path = folder + u"/settings.json"_s;
};

void writeMany(FileUserDefaults &store, const QString &name) {
    for (qint64 i = 1; i < 40; ++i) {
        while (!store.set(name + QString::number(i), i) || store.integer(name + QString::number(i)) != i) {
        }
    }
}
} // namespace

TEST_F(FileUserDefaultsTest, ValuesOutliveTheProgramWithTheirTypes) {
    const QByteArray binary("\0\xff{}", 4);
    {
        FileUserDefaults store(folder);
        EXPECT_TRUE(store.set(u"text"_s, u"a\0\"é😀\n"_s));
        EXPECT_TRUE(store.set(u"yes"_s, true));
        EXPECT_TRUE(store.set(u"number"_s, std::numeric_limits<qint64>::min()));
        EXPECT_TRUE(store.set(u"data"_s, binary));
        EXPECT_TRUE(store.set(u"gone"_s, true));
        EXPECT_TRUE(store.remove(u"gone"_s));
    }
    FileUserDefaults store(folder);
    store.registerDefaults({{u"number"_s, qint64{7}}, {u"yes"_s, qint64{7}}, {u"gone"_s, qint64{7}}});
    EXPECT_EQ(store.string(u"text"_s), u"a\0\"é😀\n"_s);
    EXPECT_TRUE(store.boolean(u"yes"_s));
    EXPECT_EQ(store.integer(u"number"_s), std::numeric_limits<qint64>::min());
    EXPECT_EQ(store.data(u"data"_s), binary);
    EXPECT_EQ(store.integer(u"yes"_s), 7) << "a value of another type is none";
    EXPECT_EQ(store.integer(u"gone"_s), 7);
    EXPECT_EQ(QFile::permissions(path) & others, QFile::Permissions());
    EXPECT_EQ(QFile::permissions(folder) & others, QFile::Permissions());
}

TEST_F(FileUserDefaultsTest, ReadsWhatAHandWroteAndKeepsWhatItDoesNotKnow) {
    putOnDisk(R"({"tone": 5, "debounceMs": "x", "big": 18446744073709551615, "half": 1.5, "none": null, "list": [1],
                  "data": {"data": "not base64!"}, "minChars": 3})");
    FileUserDefaults store(folder);
    store.registerDefaults({{u"tone"_s, u"Professional"_s}});
    EXPECT_EQ(store.string(u"tone"_s), u"Professional"_s);
    EXPECT_EQ(store.integer(u"debounceMs"_s) + store.integer(u"big"_s) + store.integer(u"half"_s), 0);
    EXPECT_EQ(store.data(u"data"_s), std::nullopt);
    EXPECT_EQ(store.integer(u"minChars"_s), 3);
    EXPECT_TRUE(store.set(u"tone"_s, u"Concise"_s));
    EXPECT_TRUE(store.set(u"list"_s, QByteArray("[]")));
    for (const char *kept : {"18446744073709551615", "not base64!", "\"tone.replaced\": 5", "\"list.replaced\": ["}) {
        EXPECT_TRUE(onDisk().contains(kept)) << kept << " in " << onDisk().data();
    }
    EXPECT_EQ(QFile::permissions(path) & others, QFile::Permissions());
}

TEST_F(FileUserDefaultsTest, ABrokenFileIsKeptAndTheDefaultsHold) {
    const QByteArray cases[]{"", "{\"tone\": \"Fri", "{\"tone\": \"\xff\"}", QByteArray(9 << 20, ' '),
                             "{\"a\":" + QByteArray(50'000, '[')};
    for (const QByteArray &broken : cases) {
        putOnDisk(broken);
        CaptureStderr();
        FileUserDefaults store(folder);
        store.registerDefaults({{u"tone"_s, u"Professional"_s}});
        EXPECT_EQ(store.string(u"tone"_s), u"Professional"_s);
        const QByteArray said = capturedStderr();
        ASSERT_EQ(keptAside().size(), 1) << broken.left(20).data();
        EXPECT_EQ(onDisk(keptAside().first()), broken);
        EXPECT_EQ(said.count('\n'), 1) << said.data();
        EXPECT_TRUE(said.contains(path.toUtf8()) && said.contains(keptAside().first().toUtf8())) << said.data();
        EXPECT_TRUE(store.set(u"tone"_s, u"Concise"_s));
        EXPECT_TRUE(onDisk().contains("Concise"));
        QDir(folder).removeRecursively();
    }
}

TEST_F(FileUserDefaultsTest, SeesWhatOthersWrite) {
    FileUserDefaults store(folder);
    FileUserDefaults other(folder);
    EXPECT_TRUE(other.set(u"tone"_s, u"Concise"_s));
    EXPECT_EQ(store.string(u"tone"_s), u"Concise"_s);
    EXPECT_TRUE(store.set(u"minChars"_s, qint64{3}));
    EXPECT_EQ(other.integer(u"minChars"_s), 3);
    EXPECT_TRUE(other.remove(u"tone"_s));
    EXPECT_EQ(store.string(u"tone"_s), std::nullopt);

    putOnDisk(R"({"minChars": 4})");
    EXPECT_EQ(store.integer(u"minChars"_s), 4);
    putOnDisk(R"({"minChars": 5, )"); // an editor in the middle of it
    EXPECT_EQ(store.integer(u"minChars"_s), 4);
    EXPECT_FALSE(store.set(u"tone"_s, u"Friendly"_s));
    putOnDisk(R"({"minChars": 6, "maxChars": 7})");
    EXPECT_EQ(store.integer(u"minChars"_s), 6);
    EXPECT_TRUE(store.set(u"minChars"_s, qint64{8}));
    EXPECT_EQ(other.string(u"tone"_s), u"Friendly"_s);
    EXPECT_TRUE(keptAside().isEmpty());
}

// The lock that keeps processes apart keeps two stores of one process apart, too.
TEST_F(FileUserDefaultsTest, WritersDoNotUndoEachOther) {
    FileUserDefaults shared(folder);
    FileUserDefaults own(folder);
    {
        const std::jthread first([&] { writeMany(own, u"first"_s); });
        const std::jthread second([&] { writeMany(shared, u"second"_s); });
        const std::jthread third([&] { writeMany(shared, u"third"_s); });
    }
    FileUserDefaults later(folder);
    for (const QString &name : {u"first"_s, u"second"_s, u"third"_s}) {
        for (qint64 i = 1; i < 40; ++i) {
            EXPECT_EQ(later.integer(name + QString::number(i)), i) << name.toStdString();
        }
    }
}

TEST_F(FileUserDefaultsTest, WhatCannotBeSavedHoldsInMemory) {
    putOnDisk("{}");
    FileUserDefaults nowhere(path); // a file where the folder should be
    EXPECT_FALSE(nowhere.set(u"tone"_s, u"Concise"_s));
    EXPECT_EQ(nowhere.string(u"tone"_s), u"Concise"_s);

    FileUserDefaults store(folder);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1000, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(store.set(u"businessProfile"_s, QString(5000, u'x')));
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(store.string(u"businessProfile"_s).value_or(QString()).size(), 5000);
    EXPECT_EQ(onDisk(), "{}");
    EXPECT_EQ(QDir(folder).entryList({u"*.new"_s}), QStringList());

    EXPECT_TRUE(store.set(u"enabled"_s, false));
    FileUserDefaults later(folder);
    EXPECT_EQ(later.string(u"businessProfile"_s).value_or(QString()).size(), 5000);
}

TEST_F(FileUserDefaultsTest, TheProgramDoesNotWaitForTheDisk) {
    QDir().mkpath(folder);
    {
        QFile lock(path + u".lock"_s); // of another writer, which hangs
        ASSERT_TRUE(lock.open(QIODevice::ReadWrite));
        ASSERT_EQ(::flock(lock.handle(), LOCK_EX | LOCK_NB), 0);
        CaptureStderr();
        {
            FileUserDefaults store(folder, Saving::inBackground);
            EXPECT_TRUE(store.set(u"tone"_s, u"Concise"_s));
            EXPECT_EQ(store.string(u"tone"_s), u"Concise"_s);
            EXPECT_TRUE(waitUntil([&] { return store.isFailingToSave(); }));
            EXPECT_FALSE(store.set(u"tone"_s, u"Friendly"_s));
        }
        EXPECT_EQ(capturedStderr().count('\n'), 1) << "the end is not waited for long";
    }
    qint64 last = 0;
    {
        FileUserDefaults store(folder, Saving::inBackground);
        QByteArray seen = onDisk();
        for (int saves = 0; saves < 5; ++last) { // most while the one before is being saved
            EXPECT_TRUE(store.set(u"minChars"_s, last));
            const QByteArray now = onDisk();
            EXPECT_EQ(store.integer(u"minChars"_s), last);
            saves += std::exchange(seen, now) != now ? 1 : 0;
        }
    }
    EXPECT_EQ(FileUserDefaults(folder).integer(u"minChars"_s), last - 1);
}

TEST_F(FileUserDefaultsTest, WhileTheFileCannotBeReadNothingIsLost) {
    const QString away = root.filePath(u"away.json"_s);
    putOnDisk(R"({"faqEntries": "five hundred", "tone": "Concise"})");
    FileUserDefaults running(folder);
    ASSERT_TRUE(QFile::rename(path, away) && QFile::link(u"/dev/null"_s, path)); // no file to read, whoever reads
    CaptureStderr();
    EXPECT_EQ(running.string(u"faqEntries"_s), u"five hundred"_s);
    FileUserDefaults started(folder);
    EXPECT_EQ(started.string(u"faqEntries"_s), std::nullopt);
    EXPECT_FALSE(started.set(u"faqEntries"_s, u"one"_s));
    EXPECT_TRUE(started.isFailingToSave());
    EXPECT_EQ(capturedStderr().count('\n'), 2);
    ASSERT_TRUE(QFile::remove(path) && QFile::rename(away, path));
    EXPECT_EQ(started.string(u"tone"_s), u"Concise"_s);
    EXPECT_TRUE(started.isFailingToSave()) << "an entry is still to be saved";
    EXPECT_TRUE(started.set(u"faqEntries"_s, u"two"_s));
    EXPECT_EQ(running.string(u"faqEntries"_s), u"two"_s);
    EXPECT_EQ(running.string(u"faqEntries.replaced"_s), u"five hundred"_s);
}

TEST_F(FileUserDefaultsTest, AReadOnlyFileIsLeftAlone) {
    for (const QByteArray &bytes : {QByteArray("{\"tone\": \"Concise\"}"), QByteArray("broken")}) {
        putOnDisk(bytes);
        ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        CaptureStderr();
        FileUserDefaults store(folder);
        EXPECT_FALSE(store.set(u"minChars"_s, qint64{3}));
        EXPECT_FALSE(store.set(u"maxChars"_s, qint64{7}));
        EXPECT_EQ(capturedStderr().count('\n'), 1);
        EXPECT_EQ(store.integer(u"minChars"_s), 3);
        EXPECT_TRUE(store.isFailingToSave());
        EXPECT_EQ(onDisk(), bytes);
        EXPECT_EQ(QFile::permissions(path) & QFile::Permissions(0x7077), QFile::ReadOwner) << "for nobody else to read";
        EXPECT_TRUE(keptAside().isEmpty());
        QFile::remove(path);
    }
}

TEST_F(FileUserDefaultsTest, LinksStay) {
    QDir().mkpath(folder);
    ASSERT_TRUE(QFile::link(u"../real.json"_s, path));
    EXPECT_TRUE(FileUserDefaults(folder).set(u"minChars"_s, qint64{3}));
    EXPECT_TRUE(QFileInfo(path).isSymbolicLink());
    EXPECT_TRUE(onDisk(u"../real.json"_s).contains("minChars"));
}

} // namespace quillory::test
