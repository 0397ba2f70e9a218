// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Updates/ArchiveUnpacker.h"
#include "Platform/URLSession.h"
#include "Updates/SampleBundle.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillory::test {
namespace {

using platform::desktop::UnpackError;
using platform::desktop::unpackZip;
using testing::ElementsAre;

class Archive : public testing::Test {
  protected:
    /// "" when it was unpacked, otherwise why not.
    std::string unpack(const QByteArray &zip) {
        QDir(work()).removeRecursively();
        QDir().mkpath(work());
        writeFile(folder.filePath(QStringLiteral("a.zip")), zip);
        try {
            unpackZip(folder.filePath(QStringLiteral("a.zip")), work(), {},
                      {.mostBytes = 3 << 20, .mostEntries = 100, .largestRatio = 100});
            return {};
        } catch (const UnpackError &error) {
            return error.what();
        }
    }
    [[nodiscard]] QString work() const { return folder.filePath(QStringLiteral("work/inside")); }
    [[nodiscard]] static QByteArray zipOf(const std::vector<ZipWriter::Item> &items) {
        ZipWriter zip;
        for (const ZipWriter::Item &item : items) {
            zip.add(item);
        }
        return zip.bytes();
    }

    QTemporaryDir folder{folderTemplate()};
};

TEST_F(Archive, GivesASignedBundleBackAsItWas) {
    const QString bundle = folder.filePath(QStringLiteral("Quillory.app"));
    makeSignedBundle(bundle, 2);
    ZipWriter zip;
    zip.addFolder(bundle, "Quillory.app");
    const mode_t old = umask(077);
    EXPECT_EQ(unpack(zip.bytes()), "");
    umask(old);
    EXPECT_EQ(vouchedVersion(work() + QStringLiteral("/Quillory.app")), "2");
    EXPECT_EQ(unpack("MZ something before it" + zip.bytes()), "") << "as installers have it";
}

TEST_F(Archive, IsRefusedWhenItCouldDoHarm) {
    constexpr unsigned link = 0120777;
    const QByteArray zeros(2 << 20, '\0');
    const QByteArray whole = zipOf({{"a", "content"}, {"b", "more"}});
    std::vector<ZipWriter::Item> many;
    for (int i = 0; i < 101; ++i) {
        many.push_back({QByteArray::number(i), ""});
    }
    const struct {
        const char *attack;
        QByteArray zip;
    } attacks[] = {
        {"..", zipOf({{"../out", "x"}})},
        {".. further on", zipOf({{"a/../../out", "x"}})},
        {"absolute name", zipOf({{folder.path().toUtf8() + "/work/out", "x"}})},
        {"name with a drive", zipOf({{"..\\out", "x"}})},
        {"symbolic link out", zipOf({{"a", "..", link}, {"a/out", "x"}})},
        {"symbolic link chain", zipOf({{"a", ".", link}, {"b", "a/..", link}, {"b/out", "x"}})},
        {"symbolic link alone", zipOf({{"a", "/etc/passwd", link}})},
        {"device", zipOf({{"a", "", 0020666}})},
        {"set-uid", zipOf({{"a", "x", 0104755}})},
        {"the same name twice", zipOf({{"a", "x"}, {"a", "y"}})},
        {"a file and a folder of one name", zipOf({{"a", "x"}, {"a/b", "y"}})},
        {"names that differ in case", zipOf({{"a/b", "x"}, {"A/c", "y"}})},
        {"names that differ in normal form", zipOf({{"\u00e9", "x"}, {"e\u0301", "y"}})},
        {"names that differ in width", zipOf({{"a", "x"}, {"\uff41", "y"}})},
        {"name that is no text", zipOf({{"a\xff", "x"}})},
        {"name with a line break", zipOf({{"a\nb", "x"}})},
        {"17 folders deep", zipOf({{QByteArray("a/").repeated(17) + "b", "x"}})},
        {"long name", zipOf({{QByteArray(600, 'a'), "x"}})},
        {"bomb by ratio", zipOf({{"a", zeros, 0100644, true}})},
        {"bomb by count", zipOf(many)},
        {"larger than anything", zipOf({{"a", QByteArray(4 << 20, 'x'), 0100644, false}})},
        {"lies about its size", QByteArray(zipOf({{"a", zeros, 0100644, true}}))
                                    .replace(QByteArray("\0\0\x20\0", 4), QByteArray("\x10\0\0\0", 4))},
        {"missing end", whole.chopped(30)},
        {"half of it", whole.first(20)},
        {"empty", ""},
        {"an error page", "<html><body>404 not found</body></html>"},
        {"changed content", QByteArray(whole).replace("content", "malice!")},
    };
    for (const auto &[attack, zip] : attacks) {
        EXPECT_NE(unpack(zip), "") << attack;
        EXPECT_THAT(QDir(folder.filePath(QStringLiteral("work")))
                        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                    ElementsAre(QStringLiteral("inside")))
            << attack;
    }
}

TEST_F(Archive, DoesNotUnpackWhatIsInAnArchiveInIt) {
    EXPECT_EQ(unpack(zipOf({{"inner.zip", zipOf({{"Quillory.app/quillory", "x"}})}})), "");
    EXPECT_THAT(QDir(work()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                ElementsAre(QStringLiteral("inner.zip")));
}

TEST_F(Archive, StopsWhenAskedOrWhenAFileCannotGrow) {
    writeFile(folder.filePath(QStringLiteral("a.zip")), zipOf({{"a", QByteArray(1 << 20, 'x')}}));
    QDir().mkpath(work());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(unpackZip(folder.filePath(QStringLiteral("a.zip")), work(), stop.get_token()),
                 platform::CancellationError);
    QDir(work()).removeRecursively();
    QDir().mkpath(work());
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit small{100'000, 100'000};
        setrlimit(RLIMIT_FSIZE, &small);
        try {
            unpackZip(folder.filePath(QStringLiteral("a.zip")), work(), {});
        } catch (const UnpackError &) {
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

} // namespace
} // namespace quillory::test
