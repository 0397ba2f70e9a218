// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "Platform/URLSession.h"
#include "Updates/SampleBundle.h"
#include "Updates/TracedChild.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cerrno>

namespace quillory::test {
namespace {

using namespace Qt::StringLiterals;
using platform::desktop::UnpackError;
using platform::desktop::unpackZip;
using testing::ElementsAre;

class Archive : public testing::Test {
  protected:
    /// "" when it was unpacked, otherwise why not.
    std::string unpack(const QByteArray &zip, const QString &to = {}) {
        QDir(work()).removeRecursively();
        QDir().mkpath(work());
        writeFile(folder.filePath(u"a.zip"_s), zip);
        try {
            unpackZip(folder.filePath(u"a.zip"_s), to.isEmpty() ? work() : to, {},
                      {.mostBytes = 3 << 20, .mostEntries = 100, .largestRatio = 100});
            return {};
        } catch (const UnpackError &error) {
            return error.what();
        }
    }
    [[nodiscard]] QString work() const { return folder.filePath(u"work/inside"_s); }
    /// With other bytes in the first file's own head and in its head in the directory.
    [[nodiscard]] static QByteArray patched(QByteArray zip, qsizetype inHead, qsizetype inDirectory, char byte) {
        zip[inHead] = byte;
        zip[zip.indexOf("PK\x01\x02") + inDirectory] = byte;
        return zip;
    }

    QTemporaryDir folder{folderTemplate()};
};

TEST_F(Archive, GivesASignedBundleBackAsItWas) {
    const QString bundle = folder.filePath(u"Quillory.app"_s);
    makeSignedBundle(bundle, 2);
    const QByteArray zip = zipOf(bundle);
    const mode_t old = umask(077);
    EXPECT_EQ(unpack(zip), "");
    umask(old);
    EXPECT_EQ(vouchedVersion(work() + u"/Quillory.app"_s), "2");
    for (const QByteArray &archive : {"MZ something before it" + zip, zip + "and after it"}) {
        EXPECT_EQ(unpack(archive), "");
        EXPECT_EQ(vouchedVersion(work() + u"/Quillory.app"_s), "2") << "nothing else is unpacked";
    }
}

TEST_F(Archive, IsRefusedWhenItCouldDoHarm) {
    constexpr unsigned link = 0120777;
    const QByteArray zeros(2 << 20, '\0');
    const QByteArray whole = zipWith({{"a", "content"}, {"b", "more"}});
    std::vector<ZipItem> many;
    for (int i = 0; i < 101; ++i) {
        many.push_back({QByteArray::number(i), ""});
    }
    const struct {
        const char *attack;
        QByteArray zip;
    } attacks[] = {
        {"..", zipWith({{"../out", "x"}})},
        {".. further on", zipWith({{"a/../../out", "x"}})},
        {"absolute name", zipWith({{folder.path().toUtf8() + "/work/out", "x"}})},
        {"name with a drive", zipWith({{"..\\out", "x"}})},
        {"symbolic link out", zipWith({{"a", "..", link}, {"a/out", "x"}})},
        {"symbolic link chain", zipWith({{"a", ".", link}, {"b", "a/..", link}, {"b/out", "x"}})},
        {"symbolic link alone", zipWith({{"a", "/etc/passwd", link}})},
        {"device", zipWith({{"a", "", 0020666}})},
        {"set-uid", zipWith({{"a", "x", 0104755}})},
        {"the same name twice", zipWith({{"a", "x"}, {"a", "y"}})},
        {"a file and a folder of one name", zipWith({{"a", "x"}, {"a/b", "y"}})},
        {"names that differ in case", zipWith({{"a/b", "x"}, {"A/c", "y"}})},
        {"names that differ in normal form", zipWith({{"\u00e9", "x"}, {"e\u0301", "y"}})},
        {"names that differ in width", zipWith({{"a", "x"}, {"\uff41", "y"}})},
        {"name that is no text", zipWith({{"a\xff", "x"}})},
        {"name with a line break", zipWith({{"a\nb", "x"}})},
        {"17 folders deep", zipWith({{QByteArray("a/").repeated(17) + "b", "x"}})},
        {"long name", zipWith({{QByteArray(600, 'a'), "x"}})},
        {"bomb by ratio", zipWith({{"a", zeros, 0100644, true}})},
        {"bomb by count", zipWith(many)},
        {"larger than anything", zipWith({{"a", QByteArray(4 << 20, 'x'), 0100644, false}})},
        {"lies about its size", QByteArray(zipWith({{"a", zeros, 0100644, true}}))
                                    .replace(QByteArray("\0\0\x20\0", 4), QByteArray("\x10\0\0\0", 4))},
        {"missing end", whole.chopped(30)},
        {"half of it", whole.first(20)},
        {"empty", ""},
        {"an error page", "<html><body>404 not found</body></html>"},
        {"encrypted", patched(whole, 6, 8, 0x01)},
        {"packed by a method that wants much memory", patched(whole, 8, 10, 14)},
        {"changed content", QByteArray(whole).replace("content", "malice!")},
    };
    for (const auto &[attack, zip] : attacks) {
        EXPECT_NE(unpack(zip), "") << attack;
        EXPECT_THAT(QDir(folder.filePath(u"work"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                    ElementsAre(u"inside"_s))
            << attack;
    }
}

TEST_F(Archive, NeedsRoomForAllOfItBeforeAnythingIsWritten) {
    EXPECT_EQ(unpack(zipWith({{"a", "x"}}), u"/proc"_s), "the archive unpacks to more than the disk has room for");
}

TEST_F(Archive, StopsWhenAsked) {
    writeFile(folder.filePath(u"a.zip"_s), zipWith({{"a", QByteArray(1 << 20, 'x')}}));
    QDir().mkpath(work());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(unpackZip(folder.filePath(u"a.zip"_s), work(), stop.get_token()), platform::CancellationError);
}

TEST_F(Archive, IsNotTakenForUnpackedWhenTheDiskIsFullAtAnyWrite) {
    const QString archive = folder.filePath(u"a.zip"_s);
    makeSignedBundle(folder.filePath(u"Quillory.app"_s), 2);
    writeFile(archive, zipOf(folder.filePath(u"Quillory.app"_s)));
    const auto unpacked = [&] {
        try {
            unpackZip(archive, work(), {});
            return 0;
        } catch (const UnpackError &) {
            return 1;
        }
    };
    int count = 0;
    for (int at = 1; count >= at - 1; ++at) {
        QDir(work()).removeRecursively();
        QDir().mkpath(work());
        count = 0;
        const int status = runTraced(
            unpacked, [&](const TracedCall &call) { return changesDisk(call) && ++count == at ? ENOSPC : goOn; });
        // The modes of folders are set once more at the end, when they are right already.
        const bool isWhole = vouchedVersion(work() + u"/Quillory.app"_s) == "2";
        EXPECT_EQ(status, isWhole ? 0 : 1) << "write " << at;
    }
    EXPECT_GT(count, 10);
}

} // namespace
} // namespace quillory::test
