// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
// How long the settings window takes to come up and to follow its user, with 500 FAQ entries and with a profile of a
// megabyte, on a settings file on disk. Time of the main thread, painting included: by the clock for opening, which
// waits for the X server and the window manager, else its processor time.
#include "Quillory/UI/Settings/SettingsWindow.h"

#include "ClockTime.h"
#include "Platform/Linux/Qt/QtMainQueue.h"
#include "Platform/Linux/Storage/FileUserDefaults.h"
#include "Quillory/Settings/AppSettings.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include <algorithm>
#include <cstdio>

namespace quillory {
namespace {

using ui::SettingsServices;
using ui::SettingsWindow;

constexpr int entries = 500;
constexpr int edits = 60;

struct Times {
    std::vector<double> milliseconds;
    void print(const char *what) {
        std::ranges::sort(milliseconds);
        std::printf("%-44s median %6.2f ms   worst %6.2f ms\n", what, milliseconds.at(milliseconds.size() / 2),
                    milliseconds.back());
    }
};

class PaintWatch final : public QObject {
  public:
    explicit PaintWatch(QWidget &watched) { watched.installEventFilter(this); }
    bool isPainted = false;
    bool eventFilter(QObject *, QEvent *event) override {
        isPainted = isPainted || event->type() == QEvent::Paint;
        return false;
    }
};

template <typename Work> double timed(Work work, clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    const double start = bench::milliseconds(clock);
    work();
    QApplication::processEvents();
    return bench::milliseconds(clock) - start;
}

double opening(SettingsWindow &window) {
    PaintWatch watch(window);
    return timed(
        [&] {
            window.makeKeyAndOrderFront();
            while (!watch.isPainted) {
                QApplication::processEvents(QEventLoop::WaitForMoreEvents);
            }
        },
        CLOCK_MONOTONIC);
}

double typing(QWidget *field, QChar character) {
    return timed([&] {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
        QApplication::sendEvent(field, &press);
    });
}

Times manyEdits(QWidget *field) {
    Times times;
    for (int i = 0; i < edits; ++i) {
        times.milliseconds.push_back(typing(field, i % 9 == 8 ? u' ' : u'a'));
    }
    return times;
}

QScrollArea &business(SettingsWindow &window) {
    return *window.findChild<QTabBar *>()->parentWidget()->findChildren<QScrollArea *>().at(1);
}

void measureFAQ(const SettingsServices &services) {
    QList<FAQEntry> list;
    const QString answer = QStringLiteral("Delivery is BD 2 anywhere in Bahrain and free above BD 30. ");
    for (int i = 0; i < entries; ++i) {
        list.append({QUuid::createUuid(), QStringLiteral("Question number %1?").arg(i), answer.repeated(1 + i % 4)});
    }
    services.settings.setFAQEntries(list);

    Times first;
    for (int i = 0; i < 10; ++i) {
        SettingsWindow *window = nullptr;
        const double making = timed([&] { window = new SettingsWindow(services); }, CLOCK_MONOTONIC);
        first.milliseconds.push_back(making + opening(*window));
        delete window;
    }
    first.print("opening the window");
    SettingsWindow window(services);
    opening(window);
    Times tab{{timed([&] { window.findChild<QTabBar *>()->setCurrentIndex(1); })}};
    tab.print("first look at 500 FAQ entries");
    Times again;
    for (int i = 0; i < 10; ++i) {
        window.close();
        QApplication::processEvents();
        again.milliseconds.push_back(opening(window));
    }
    again.print("opening it again");

    QScrollBar *bar = business(window).verticalScrollBar();
    Times scrolling;
    for (int i = 0; i < 400; ++i) {
        scrolling.milliseconds.push_back(timed([&] { bar->setValue(bar->value() + 60); }));
    }
    scrolling.print("scrolling by 60 points");
    Times jumping;
    for (int i = 0; i < 100; ++i) {
        jumping.milliseconds.push_back(timed([&] { bar->setValue((i * 7919) % bar->maximum()); }));
    }
    jumping.print("jumping to another place");
    const auto fields = business(window).widget()->findChildren<QPlainTextEdit *>();
    QPlainTextEdit *field = fields.at(entries / 2);
    business(window).ensureWidgetVisible(field);
    field->setFocus();
    manyEdits(field).print("typing a character into an answer");
}

void measureProfile(const SettingsServices &services) {
    const QString line = QStringLiteral("We sell dresses and deliver all over Bahrain.\n");
    services.settings.store().set(settingsKey::businessProfile, line.repeated(1'000'000 / line.size()));
    SettingsWindow window(services);
    opening(window);
    Times tab{{timed([&] { window.findChild<QTabBar *>()->setCurrentIndex(1); })}};
    tab.print("first look at a profile of 1 MB");
    auto *field = business(window).widget()->findChild<QPlainTextEdit *>();
    field->setFocus();
    manyEdits(field).print("typing a character into it");
}

} // namespace
} // namespace quillory

int main(int argc, char **argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // seen as it comes, through a pipe too
    const QApplication application(argc, argv);
    quillory::test::SimulatedDesktop desktop;
    const QTemporaryDir folder;
    platform::desktop::QtMainQueue queue;
    platform::desktop::FileUserDefaults store(folder.path(), platform::desktop::Saving::inBackground);
    quillory::AppSettings settings(store, desktop.process);
    const quillory::ui::SettingsServices services{settings, desktop.modelAccess.client, desktop.applications, queue,
                                                  desktop.applications};
    quillory::measureFAQ(services);
    quillory::measureProfile(services);
    return 0;
}
