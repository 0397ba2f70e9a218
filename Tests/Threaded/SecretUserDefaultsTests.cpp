// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/SecretUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <atomic>

namespace quillory::test {

using namespace Qt::StringLiterals;

using platform::KeyPlace;
using platform::desktop::SecretUserDefaults;

namespace {

/// A password store that the desktop shares between processes.
struct FakeStore final : platform::desktop::SecretStore {
    std::mutex mutex;
    std::optional<QString> kept;
    std::atomic<bool> answers = true;
    std::atomic<int> lookUps = 0;
    std::atomic<int> questions = 0;

    bool store(const QString &secret, const std::stop_token & /*stop*/) override {
        const std::scoped_lock lock(mutex);
        kept = answers ? secret : kept;
        return answers;
    }
    [[nodiscard]] std::optional<QString> lookUp(platform::desktop::Unlocking unlocking,
                                                const std::stop_token & /*stop*/) override {
        ++lookUps;
        questions += unlocking == platform::desktop::Unlocking::asks ? 1 : 0;
        const std::scoped_lock lock(mutex);
        return answers ? kept : std::nullopt;
    }
    bool clear(const std::stop_token & /*stop*/) override {
        const std::scoped_lock lock(mutex);
        kept = answers ? std::nullopt : kept;
        return answers;
    }
};

struct SecretUserDefaultsTest : testing::Test {
    QTemporaryDir folder;
    FakeStore passwords;
    SecretUserDefaults store{passwords, folder.path()};
    const QString key = u"openRouterAPIKey"_s;

    QByteArray onDisk() const {
        QFile file(folder.filePath(u"settings.json"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(SecretUserDefaultsTest, TheKeyLivesInThePasswordStoreAndEveryProcessSeesANewOne) {
    SecretUserDefaults running(passwords, folder.path());
    EXPECT_EQ(running.string(key), std::nullopt);
    EXPECT_EQ(passwords.lookUps, 0) << "who never used the password store never waits for it";
    for (const QString &value : {u"first"_s, u"second"_s}) {
        EXPECT_EQ(store.storeKey(value, {}), KeyPlace::passwordStore);
        EXPECT_EQ(running.string(key), value);
        EXPECT_EQ(running.string(key), value);
    }
    EXPECT_EQ(passwords.lookUps, 2);
    EXPECT_FALSE(onDisk().contains("second"));
    EXPECT_TRUE(store.remove(key));
    EXPECT_EQ(running.string(key), std::nullopt);
    EXPECT_EQ(passwords.kept, std::nullopt);
}

TEST_F(SecretUserDefaultsTest, ALockedStoreKeepsTheKeyAndIsNotAskedAgainByItself) {
    EXPECT_EQ(store.storeKey(u"secret"_s, {}), KeyPlace::passwordStore);
    passwords.answers = false;
    SecretUserDefaults running(passwords, folder.path());
    EXPECT_TRUE(running.isKept(key));
    EXPECT_EQ(passwords.lookUps, 0) << "a start waits for nobody";
    EXPECT_EQ(running.string(key), std::nullopt);
    EXPECT_EQ(running.string(key), std::nullopt);
    EXPECT_EQ(passwords.lookUps, 1);
    running.askAgain();
    EXPECT_EQ(running.string(key), std::nullopt);
    EXPECT_EQ(passwords.questions, 2);

    EXPECT_FALSE(store.remove(key));
    EXPECT_TRUE(store.isKept(key));
    EXPECT_EQ(store.storeKey(u"in the file"_s, {}), KeyPlace::settingsFile);
    EXPECT_FALSE(store.remove(key)) << "the first one is still there";
    passwords.answers = true;
    EXPECT_TRUE(store.remove(key));
    EXPECT_EQ(passwords.kept, std::nullopt);
    EXPECT_FALSE(running.isKept(key));
}

TEST_F(SecretUserDefaultsTest, TheSettingsFileIsTheFallbackAndComesFirst) {
    EXPECT_EQ(store.storeKey(u"secret"_s, {}), KeyPlace::passwordStore);
    passwords.answers = false;
    EXPECT_EQ(store.storeKey(u"in the file"_s, {}), KeyPlace::settingsFile);
    EXPECT_EQ(SecretUserDefaults(passwords, folder.path()).string(key), u"in the file"_s);
    EXPECT_TRUE(onDisk().contains("in the file"));
    passwords.answers = true;
    EXPECT_EQ(store.storeKey(u"secret"_s, {}), KeyPlace::passwordStore);
    EXPECT_FALSE(onDisk().contains("in the file"));
    EXPECT_TRUE(store.set(key, u"by command"_s));
    EXPECT_EQ(store.string(key), u"by command"_s);
    EXPECT_EQ(passwords.kept, std::nullopt);
}

} // namespace
} // namespace quillory::test
