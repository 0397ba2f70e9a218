// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/Qt/QtApplication.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QTextDocumentFragment>

#include <gmock/gmock.h>

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

using platform::desktop::QtApplication;
using testing::ElementsAre;

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
    /// What can be read on the open one: title and body as plain text, and the buttons, the default one with an
    /// asterisk.
    static QStringList texts() {
        QStringList found;
        for (const QLabel *const label : open()->findChildren<QLabel *>()) {
            found += QTextDocumentFragment::fromHtml(label->text()).toPlainText();
        }
        for (const QPushButton *const button : open()->findChildren<QPushButton *>()) {
            found += QString(button->text()).replace(u"&&"_s, u"&"_s) + (button->isDefault() ? u"*"_s : QString());
        }
        found.removeAll(QString());
        return found;
    }
    /// A key that comes from the X server, once the window is the one that gets it.
    static void press(const char *key) {
        ASSERT_TRUE(spinUntil([] { return open() != nullptr && open()->isActiveWindow(); }));
        run({"xdotool", "key", key});
    }
    void ask(const QString &title, const QStringList &buttons = {}, const QString &body = u"Body"_s) {
        application.runAlert({title, body, buttons}, [this](int button) { answers.push_back(button); });
    }

    QtApplication application;
    std::vector<int> answers;
};

TEST_F(Alerts, AreAnsweredByKeysOneAfterTheOther) {
    const QStringList offer{u"Install & Relaunch"_s, u"Later"_s};
    ask(u"First"_s, offer);
    ask(u"Second"_s, offer);
    ask(u"Third"_s);
    EXPECT_THAT(texts(), ElementsAre(u"First"_s, u"Body"_s, u"Install & Relaunch*"_s, u"Later"_s));
    EXPECT_EQ(open()->windowModality(), Qt::ApplicationModal);
    press("Return");
    ASSERT_TRUE(spinUntil([&] { return answers.size() == 1; }));
    EXPECT_EQ(texts().first(), u"Second"_s);
    press("Escape");
    ASSERT_TRUE(spinUntil([&] { return answers.size() == 2; }));
    EXPECT_THAT(texts(), ElementsAre(u"Third"_s, u"Body"_s, u"OK*"_s));
    press("alt+F4");
    ASSERT_TRUE(spinUntil([&] { return answers.size() == 3; }));
    EXPECT_THAT(answers, ElementsAre(0, 1, 0));
    EXPECT_EQ(open(), nullptr);
}

TEST_F(Alerts, FitTheScreenAndShowTextAsItIs) {
    const QString notes = u"<b>Faster</b> & better.\n"_s.repeated(500);
    ask(u"Title"_s, {}, notes);
    EXPECT_LT(open()->height(), 480);
    EXPECT_THAT(open()->findChildren<QScrollArea *>(), testing::SizeIs(1));
    EXPECT_EQ(texts().value(1).simplified(), notes.simplified());
}

TEST_F(Alerts, OfProgressCanBeCancelledOnce) {
    int cancelled = 0;
    auto progress = application.showProgress(u"Updating Quillory"_s, [&] { ++cancelled; });
    progress->show(u"Downloading the update…"_s, 0.5);
    EXPECT_THAT(texts(), testing::Contains(u"Downloading the update…"_s));
    EXPECT_EQ(open()->findChild<QProgressBar *>()->value(), 50);
    press("Escape");
    ASSERT_TRUE(spinUntil([&] { return cancelled == 1; }));
    progress->show(u"Unpacking"_s, std::nullopt); // it ends a little later
    EXPECT_EQ(open(), nullptr);
    progress.reset();
    EXPECT_EQ(cancelled, 1);
}

} // namespace
} // namespace quillory::test
