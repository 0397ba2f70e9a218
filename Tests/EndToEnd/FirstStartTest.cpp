// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ChatStory.h"
#include "EndToEnd/Keyboard.h"
#include "RealDesktop/RealDesktop.h"

#include <QFile>
#include <QProcess>

namespace quillory::test {

namespace {

struct Outcome {
    int status = 0;
    QByteArray output;
};

Outcome runWithInput(const QStringList &arguments, const QByteArray &input) {
    QProcess program;
    program.start(QStringLiteral(QUILLORY_PROGRAM), arguments);
    program.write(input);
    program.closeWriteChannel();
    program.waitForFinished(60'000);
    return {program.exitCode(), program.readAllStandardOutput()};
}

bool setupIsUp() {
    return run({"xdotool", "search", "--onlyvisible", "--name", "^Set Up Quillory$"}, Output::dropped) == 0;
}

bool setupIsActive() {
    return run({"sh", "-c", "xdotool getactivewindow getwindowname | grep -qx 'Set Up Quillory'"}, Output::dropped) ==
           0;
}

class FirstStart : public ChatStory {};
INSTANTIATE_TEST_SUITE_P(In, FirstStart, chromiumAlone, testing::PrintToStringParamName());

/// From a fresh home, without a key and with accessibility off, to the first accepted rewrite.
TEST_P(FirstStart, LeadsToTheFirstRewrite) {
    RealDesktop::setAccessibilityEnabled(false);
    // A password store of the test's own, so that the machine's is not asked.
    qputenv("SECRET_BACKEND", "file");
    qputenv("SECRET_FILE_TEST_PATH", qgetenv("HOME") + "/passwords");
    qputenv("SECRET_FILE_TEST_PASSWORD", "opens it");
    const QString answer = QStringLiteral("Hello, can you please send me the price list?");
    m_model.willAnswer(answer, Manner::answersAtOnce);
    qputenv("QUILLORY_MODEL_SERVICE", m_model.address());
    runWithInput(
        {QStringLiteral("defaults"), QStringLiteral("write"), QStringLiteral("assistantMode"), QStringLiteral("false")},
        {});
    const ChildProcess program({QUILLORY_PROGRAM});
    ASSERT_TRUE(waitUntil(setupIsUp, 20'000));
    EXPECT_EQ(runWithInput({QStringLiteral("setup")}, {}).status, 0) << "the first one comes to the front instead";
    EXPECT_TRUE(waitUntil(setupIsActive));
    EXPECT_TRUE(waitUntil([] {
        keyboard::tap("Escape");
        return !setupIsUp();
    }));
    EXPECT_NE(runWithInput({QStringLiteral("doctor")}, {}).status, 0);
    // Accessibility: yes, as offered. Autostart: no, as offered. The key, after one that is none.
    const Outcome setup =
        runWithInput({QStringLiteral("setup"), QStringLiteral("--terminal")}, "\n\nmade up\nmade-up-key\nn\n");
    EXPECT_EQ(setup.status, 0) << setup.output.toStdString();
    EXPECT_FALSE(setup.output.contains("made")) << setup.output.toStdString();
    EXPECT_TRUE(setup.output.contains("password store"));
    QFile settings(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/quillory/settings.json"));
    EXPECT_TRUE(settings.open(QFile::ReadOnly) && !settings.readAll().contains("made-up"));
    ASSERT_TRUE(logged(QStringLiteral("accessibility trusted -> true")));

    startBrowser(at({}));
    ASSERT_TRUE(clickBox());
    ASSERT_TRUE(logged(QStringLiteral(", chat app")));
    const QString draft = QStringLiteral("helo can u send me the price list");
    keyboard::type(draft);
    // A slow machine may pause long enough for a part of it to be asked about first.
    ASSERT_TRUE(waitUntil(
        [&] {
            const auto asked = m_model.questions();
            const QString log = Assistant::log();
            return !asked.empty() && asked.back().draft() == draft &&
                   log.lastIndexOf(QStringLiteral(" complete (")) >
                       log.lastIndexOf(QStringLiteral("prefetch started (")) &&
                   log.lastIndexOf(QStringLiteral("panel visible")) >
                       log.lastIndexOf(QStringLiteral("prefetch started ("));
        },
        20'000));
    EXPECT_EQ(m_model.questions().back().authorization, QStringLiteral("Bearer made-up-key"));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(answer));
    EXPECT_EQ(runWithInput({QStringLiteral("doctor")}, {}).status, 0);
    EXPECT_FALSE(Assistant::log().contains(QStringLiteral("made-up")));
}

} // namespace

} // namespace quillory::test
