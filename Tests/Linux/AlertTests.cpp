// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/QtApplication.h"
#include "RealDesktop/ChildProcess.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using platform::desktop::QtApplication;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Condition> bool eventually(Condition condition) {
    return waitUntil([&] {
        QApplication::processEvents();
        return condition();
    });
}

/// For people to look at.
void saveAlert(const QString &name, QWidget &window) {
    const QString folder = qEnvironmentVariable("QUILLORY_PICTURES");
    if (!folder.isEmpty()) {
        window.grab().save(folder + QStringLiteral("/alert-") + name + QStringLiteral(".png"));
    }
}

class Alerts : public testing::Test {
  protected:
    static QDialog *open() {
        for (QWidget *const window : QApplication::topLevelWidgets()) {
            if (auto *const dialog = qobject_cast<QDialog *>(window); dialog != nullptr && dialog->isVisible()) {
                return dialog;
            }
        }
        return nullptr;
    }
    /// The texts that can be read on the open one.
    static QStringList texts() {
        QStringList found;
        for (const QLabel *const label : open()->findChildren<QLabel *>()) {
            found += label->text();
        }
        for (const QPushButton *const button : open()->findChildren<QPushButton *>()) {
            found += QString(button->text()).replace(QStringLiteral("&&"), QStringLiteral("&")) +
                     (button->isDefault() ? QStringLiteral("*") : QString());
        }
        return found;
    }
    /// A key that comes from the X server, once the window is the one that gets it.
    static void press(const char *key) {
        ASSERT_TRUE(eventually([] { return open() != nullptr && open()->isActiveWindow(); }));
        run({"xdotool", "key", key});
    }
    void ask(const QString &title, const QStringList &buttons = {}) {
        application.runAlert({title, QStringLiteral("Body"), buttons},
                             [this](int button) { answers.push_back(button); });
    }

    QtApplication application;
    std::vector<int> answers;
};

TEST_F(Alerts, AreAnsweredByKeysOneAfterTheOther) {
    const QStringList offer{QStringLiteral("Install & Relaunch"), QStringLiteral("Later")};
    application.runAlert(
        {QStringLiteral("Quillory 1.4.2 is available"),
         QStringLiteral("- Faster answers in long conversations.\n- The card stays beside the box when the "
                        "window moves.\n\nInstall now and relaunch?"),
         offer},
        [this](int button) { answers.push_back(button); });
    ask(QStringLiteral("Second"), offer);
    ask(QStringLiteral("Third"));
    EXPECT_EQ(texts().first(), QStringLiteral("Quillory 1.4.2 is available"));
    EXPECT_THAT(texts().sliced(2), ElementsAre(QStringLiteral("Install & Relaunch*"), QStringLiteral("Later")));
    EXPECT_EQ(open()->windowModality(), Qt::ApplicationModal);
    saveAlert(QStringLiteral("offer"), *open());
    press("Return");
    ASSERT_TRUE(eventually([&] { return answers.size() == 1; }));
    EXPECT_EQ(texts().first(), QStringLiteral("Second"));
    press("Escape");
    ASSERT_TRUE(eventually([&] { return answers.size() == 2; }));
    EXPECT_THAT(texts(), ElementsAre(QStringLiteral("Third"), QStringLiteral("Body"), QStringLiteral("OK*")));
    saveAlert(QStringLiteral("message"), *open());
    press("Escape");
    ASSERT_TRUE(eventually([&] { return answers.size() == 3; }));
    EXPECT_THAT(answers, ElementsAre(0, 1, 0));
    EXPECT_EQ(open(), nullptr);
}

TEST_F(Alerts, FitTheScreenAndShowTextAsItIs) {
    const QString notes = QStringLiteral("<b>Faster</b> & better.\n").repeated(500);
    application.runAlert({QStringLiteral("Title"), notes, {}}, [](int) {});
    EXPECT_LT(open()->height(), 480);
    EXPECT_THAT(open()->findChildren<QScrollArea *>(), testing::SizeIs(1));
    EXPECT_EQ(texts().value(1), notes);
    saveAlert(QStringLiteral("long"), *open());
}

TEST_F(Alerts, OfProgressCanBeCancelledOnce) {
    int cancelled = 0;
    auto progress = application.showProgress(QStringLiteral("Updating Quillory"), [&] { ++cancelled; });
    progress->show(QStringLiteral("Downloading the update…"), 0.5);
    EXPECT_THAT(texts(), testing::Contains(QStringLiteral("Downloading the update…")));
    EXPECT_EQ(open()->findChild<QProgressBar *>()->value(), 50);
    saveAlert(QStringLiteral("progress"), *open());
    press("Escape");
    ASSERT_TRUE(eventually([&] { return cancelled == 1; }));
    progress.reset();
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(cancelled, 1);
}

} // namespace
} // namespace quillory::test
