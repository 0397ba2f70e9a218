// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/UI/Settings/SettingsWindow.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>

#include <gmock/gmock.h>

namespace quillory::test {
namespace {

using namespace quillory::ui;
using namespace Qt::StringLiterals;
using platform::DefaultsValue;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

/// What assistive tools read of an element and all in it that can be seen: role and name, and the value if it has one.
void describe(QAccessibleInterface *element, std::vector<std::string> &lines) {
    if (element == nullptr || element->state().invisible) {
        return;
    }
    const QString name = element->text(QAccessible::Name);
    QString line =
        QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(element->role())) + u' ' + name;
    if (auto *value = element->valueInterface()) {
        line += u" = "_s + value->currentValue().toString();
    } else if (const QString text = element->text(QAccessible::Value); !text.isEmpty()) {
        line += u" = "_s + text;
    }
    if (element->state().checkable) {
        line += element->state().checked ? u" (on)"_s : u" (off)"_s;
    }
    if (const QString help = element->text(QAccessible::Description); !help.isEmpty()) {
        line += u" ("_s + help + u')';
    }
    if (!name.isEmpty()) {
        lines.push_back(line.toStdString());
    }
    for (int i = 0; i < element->childCount(); ++i) {
        describe(element->child(i), lines);
    }
}

class SettingsWindowTest : public testing::Test {
  protected:
    SettingsWindowTest() : m_palette(QApplication::palette()), m_font(QApplication::font()) {}
    ~SettingsWindowTest() override {
        window.reset();
        QApplication::setPalette(m_palette);
        QApplication::setFont(m_font);
    }

    void open(int tab = 0) {
        window = std::make_unique<SettingsWindow>(SettingsServices{desktop.modelAccess.settings,
                                                                   desktop.modelAccess.client, desktop.applications,
                                                                   desktop.mainQueue, desktop.applications});
        window->makeKeyAndOrderFront();
        ASSERT_TRUE(spinUntil([this] {
            window->activateWindow(); // a window manager that is still starting takes the focus away
            return window->isActiveWindow();
        }));
        showTab(tab);
    }
    void showTab(int tab) {
        child<QTabBar>()->setCurrentIndex(tab);
        for (int level = 0; level < 5; ++level) { // each asks the next one for a new layout
            QApplication::processEvents();
        }
    }
    bool warning() {
        return testing::Value(texts(),
                              Contains(testing::StartsWith("StaticText Changes cannot be saved to disk now.")));
    }
    /// What does not fit is scrolled to, not cut off.
    void expectNothingClipped(const std::string &look) {
        for (const QWidget *widget : child<QScrollArea>()->widget()->findChildren<QWidget *>()) {
            const QLabel *label = qobject_cast<const QLabel *>(widget);
            if (widget->isVisible() && qobject_cast<const QPlainTextEdit *>(widget->parent()) == nullptr) {
                EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry())) << look;
                EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << look;
                EXPECT_TRUE(label == nullptr || label->height() >= label->heightForWidth(label->width())) << look;
            }
        }
    }
    DefaultsValue stored(const QString &key) { return desktop.userDefaults.stored().at(key); }
    std::vector<std::string> texts() {
        std::vector<std::string> lines;
        describe(QAccessible::queryAccessibleInterface(window.get()), lines);
        return lines;
    }
    /// The first one that can be seen, of that text or accessible name.
    template <typename Widget> Widget *child(const QString &name = {}) {
        for (Widget *widget : window->findChildren<Widget *>()) {
            const bool isMeant = name.isEmpty() || widget->accessibleName() == name || widget->property("text") == name;
            if (widget->isVisible() && isMeant) {
                return widget;
            }
        }
        return nullptr;
    }
    static void setLook(bool dark, int points) {
        QPalette palette = dark ? QPalette(QColor(50, 50, 54), QColor(36, 36, 40)) : QPalette(QColor(239, 239, 239));
        palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
        QApplication::setPalette(palette);
        QFont font = QApplication::font();
        font.setPointSize(points);
        QApplication::setFont(font);
    }
    void store(const QList<FAQEntry> &entries) { desktop.modelAccess.settings.setFAQEntries(entries); }

    SimulatedDesktop desktop;
    std::unique_ptr<SettingsWindow> window;

  private:
    QPalette m_palette;
    QFont m_font;
};

TEST_F(SettingsWindowTest, HasEveryTextForAssistiveTools) {
    store({{QUuid::createUuid(), u"Open?"_s, u"9 to 5"_s}});
    open();
    EXPECT_THAT(texts(), ElementsAre("Window Quillory", "PageTabList General", "PageTab General", "PageTab Business",
                                     "Grouping Behavior", "StaticText Behavior", "CheckBox Enable suggestions (on)",
                                     "CheckBox Suggest replies in WhatsApp (on)", "StaticText Tone",
                                     "ComboBox Professional = Professional", "StaticText Trigger delay: 500 ms",
                                     "Slider Trigger delay: 500 ms = 500", "StaticText Minimum characters: 8",
                                     "SpinBox Minimum characters: 8 = 8", "Grouping Status", "StaticText Status",
                                     "StaticText Accessibility access granted", "Button Test AI connection"));
    desktop.applications.trusted = false;
    window->close();
    window->makeKeyAndOrderFront();
    EXPECT_THAT(texts(), IsSupersetOf({"StaticText Accessibility access required",
                                       "StaticText Grant it in System Settings → Privacy & Security → Accessibility, "
                                       "then relaunch the app."}));
    showTab(1);
    EXPECT_THAT(texts(),
                ElementsAre("Window Quillory", "PageTabList Business", "PageTab General", "PageTab Business",
                            "StaticText My business (used to write replies in your voice):",
                            "EditableText My business (used to write replies in your voice):",
                            "StaticText When a chat is open and your input box is empty, the visible conversation is "
                            "read locally and a reply is drafted. Nothing is sent automatically, and nothing is "
                            "stored.",
                            "Grouping FAQs (replies answer from these and never invent what's missing)",
                            "StaticText FAQs (replies answer from these and never invent what's missing)",
                            "EditableText Question 1 = Open? (Question — e.g. How much is delivery?)",
                            "EditableText Answer 1 = 9 to 5 (Answer)", "Button Remove FAQ", "Button Add FAQ"));
}

TEST_F(SettingsWindowTest, StoresWhatTheUserSetsAndShowsWhatOthersStore) {
    open();
    auto *const enabled = child<QCheckBox>();
    auto *const tone = child<QComboBox>();
    auto *const delay = child<QSlider>();
    auto *const characters = child<QSpinBox>();
    QTest::mouseClick(enabled, Qt::LeftButton, {}, {enabled->width() - 20, enabled->height() / 2});
    EXPECT_EQ(stored(settingsKey::enabled), DefaultsValue(false));
    QTest::keyClick(enabled, Qt::Key_Space);
    EXPECT_EQ(stored(settingsKey::enabled), DefaultsValue(true));
    QStringList tones;
    for (int i = 0; i < tone->count(); ++i) {
        tones.append(tone->itemText(i));
    }
    EXPECT_EQ(tones.join(u'|'), u"Professional|Friendly|Concise|Grammar only"_s);
    QTest::keyClick(tone, Qt::Key_Down);
    EXPECT_EQ(stored(settingsKey::tone), DefaultsValue(u"Friendly"_s));
    QStringList stops;
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Home, Qt::Key_Left, Qt::Key_End, Qt::Key_Right}) {
        QTest::keyClick(delay, key);
        stops.append(QString::number(desktop.userDefaults.integer(settingsKey::debounceMs)));
    }
    EXPECT_EQ(stops.join(u' '), u"550 600 300 300 1500 1500"_s);
    EXPECT_THAT(texts(), Contains("StaticText Trigger delay: 1500 ms"));
    QTest::keyClick(characters, Qt::Key_Up);
    QTest::mouseClick(characters, Qt::LeftButton, {}, {characters->width() / 2, 6});
    EXPECT_EQ(stored(settingsKey::minChars), DefaultsValue(qint64{10}));
    QTest::keyClicks(characters, u"5"_s); // cannot be seen, so it must not count
    QTest::mouseClick(characters, Qt::LeftButton, {}, {characters->width() / 2, characters->height() - 6});
    EXPECT_EQ(stored(settingsKey::minChars), DefaultsValue(qint64{9}));

    desktop.userDefaults.set(settingsKey::enabled, true);
    desktop.userDefaults.set(settingsKey::assistantMode, false);
    desktop.userDefaults.set(settingsKey::tone, u"Grammar only"_s);
    desktop.userDefaults.set(settingsKey::debounceMs, qint64{725});
    desktop.userDefaults.set(settingsKey::minChars, qint64{100});
    desktop.advance(200);
    EXPECT_THAT(texts(), IsSupersetOf({"CheckBox Enable suggestions (on)", "CheckBox Suggest replies in WhatsApp (off)",
                                       "ComboBox Grammar only = Grammar only", "StaticText Trigger delay: 725 ms",
                                       "Slider Trigger delay: 725 ms = 725", "SpinBox Minimum characters: 100 = 100"}));
    QTest::keyClick(delay, Qt::Key_Left);
    QTest::keyClick(characters, Qt::Key_Up);
    EXPECT_EQ(stored(settingsKey::debounceMs), DefaultsValue(qint64{700})) << "back on a step";
    EXPECT_EQ(stored(settingsKey::minChars), DefaultsValue(qint64{100}));

    // Values of other types, or that no control can show.
    desktop.userDefaults.set(settingsKey::tone, u"Rude"_s);
    desktop.userDefaults.set(settingsKey::enabled, u"no"_s);
    desktop.userDefaults.set(settingsKey::debounceMs, qint64{1} << 40);
    desktop.userDefaults.set(settingsKey::minChars, qint64{-5});
    desktop.advance(200);
    EXPECT_THAT(texts(),
                IsSupersetOf({"CheckBox Enable suggestions (on)", "Slider Trigger delay: 1099511627776 ms = 1500",
                              "SpinBox Minimum characters: -5 = 1"}));
    characters->stepBy(-1);
    EXPECT_EQ(stored(settingsKey::enabled), DefaultsValue(u"no"_s)) << "nothing is stored for merely being shown";
    EXPECT_EQ(desktop.userDefaults.integer(settingsKey::minChars), -5);
}

TEST_F(SettingsWindowTest, TestsTheConnection) {
    open();
    for (const bool trusted : {false, true}) {
        desktop.applications.trusted = trusted;
        desktop.advance(2000);
        EXPECT_THAT(texts(), Contains(trusted ? "StaticText Accessibility access granted"
                                              : "StaticText Accessibility access required"));
    }
    auto *const button = child<QPushButton>();
    const auto outcome = [&] {
        EXPECT_TRUE(desktop.mainQueue.runUntil([&] { return button->isEnabled(); }));
        return texts().back();
    };
    button->click();
    EXPECT_EQ(outcome(), "StaticText ✗ No OpenRouter API key set. Open Settings from the menu bar icon.");
    desktop.userDefaults.set(settingsKey::openRouterAPIKey, u"key"_s);
    button->click();
    EXPECT_EQ(texts().back(), "Button Testing…");
    button->click();
    const auto exchange = desktop.urlSession.exchange(0);
    EXPECT_EQ(exchange->json()[u"messages"_s].toArray().last()[u"content"_s].toString().contains(
                  u"helo this is a quik test mesage"_s),
              true);
    exchange->line(R"({"choices": [{"message": {"content": "Hello."}}]})");
    exchange->end();
    EXPECT_EQ(outcome(), "StaticText ✓ Working");
    button->click();
    desktop.urlSession.exchange(1)->fail(u"The network is down"_s);
    EXPECT_EQ(outcome(), "StaticText ✗ The network is down");
    EXPECT_EQ(desktop.urlSession.requestCount(), 2) << "one test at a time";
    button->click();
    window.reset(); // must not wait for the answer
}

TEST_F(SettingsWindowTest, KeepsWhatIsBeingTyped) {
    open(1);
    auto *const profile = child<QPlainTextEdit>();
    const auto setElsewhere = [this](const QString &text) {
        desktop.userDefaults.set(settingsKey::businessProfile, text);
        desktop.advance(200);
    };
    profile->setFocus();
    setElsewhere(u"A shop"_s);
    EXPECT_EQ(profile->toPlainText(), u"A shop"_s);
    profile->moveCursor(QTextCursor::End);
    QTest::keyClicks(profile, u" in Riffa"_s);
    EXPECT_EQ(stored(settingsKey::businessProfile), DefaultsValue(u"A shop in Riffa"_s));
    setElsewhere(u"Another"_s);
    EXPECT_EQ(profile->toPlainText(), u"A shop in Riffa"_s);
    QTest::keyClicks(profile, u"!"_s);
    EXPECT_EQ(stored(settingsKey::businessProfile), DefaultsValue(u"A shop in Riffa!"_s));
    EXPECT_EQ(stored(settingsKey::businessProfile + u".replaced"_s), DefaultsValue(u"Another"_s));

    EXPECT_FALSE(warning());
    desktop.userDefaults.diskIsFull = true;
    QTest::keyClicks(profile, u"!"_s);
    desktop.advance(200);
    EXPECT_TRUE(warning());
    window->close();
    window->makeKeyAndOrderFront();
    EXPECT_EQ(profile->toPlainText(), u"A shop in Riffa!!"_s);
    desktop.userDefaults.diskIsFull = false;
    desktop.advance(200);
    EXPECT_FALSE(warning());
}

TEST_F(SettingsWindowTest, TakesAnyText) {
    const QString odd = u"no\u00a0break, tab\there\r\nline\u2028soft"_s;
    desktop.userDefaults.set(settingsKey::businessProfile, odd);
    desktop.userDefaults.set(settingsKey::faqEntries, QByteArray("[{\"question\": \"mine\"}"));
    open(1);
    desktop.advance(1000);
    EXPECT_EQ(stored(settingsKey::businessProfile), DefaultsValue(odd)) << "not rewritten for being shown";
    auto *const profile = child<QPlainTextEdit>();
    profile->setFocus();
    profile->moveCursor(QTextCursor::Start);
    QApplication::clipboard()->setText(u"a\0b\x1b[1mc\vd\r\ne😊"_s);
    profile->paste();
    EXPECT_EQ(stored(settingsKey::businessProfile),
              DefaultsValue(u"ab[1mc\nd\ne😊no\u00a0break, tab\there\nline\u2028soft"_s));

    child<QPushButton>(u"Add &FAQ"_s)->click();
    EXPECT_EQ(stored(settingsKey::faqEntries + u".unreadable"_s),
              DefaultsValue(QByteArray("[{\"question\": \"mine\"}")));
    child<QLineEdit>()->paste();
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().constLast().question, u"ab[1mc d e😊"_s);

    for (const auto &[text, side] :
         {std::pair(u"\n12 دينار\nhello"_s, Qt::AlignRight), {u"hello\nدينار"_s, Qt::AlignLeft}}) {
        desktop.userDefaults.set(settingsKey::businessProfile, text);
        child<QLineEdit>()->setFocus();
        desktop.advance(200);
        EXPECT_EQ(profile->document()->defaultTextOption().alignment(), side) << text.toStdString();
    }
}

TEST_F(SettingsWindowTest, EditsTheListOfEntriesByKeyboard) {
    const QUuid twice = QUuid::createUuid();
    QList<FAQEntry> entries{{twice, u"Open?"_s, u"9 to 5"_s},
                            {QUuid::createUuid(), u"Where?"_s, u"Riffa"_s},
                            {twice, u"Open?"_s, u"never"_s}};
    for (int i = 4; i <= 20; ++i) {
        entries.append({QUuid::createUuid(), u"Q%1"_s.arg(i), u"A "_s.repeated(i * 20)});
    }
    store(entries);
    open(1);
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    const auto focused = [] { return QApplication::focusWidget()->accessibleName(); };
    child<QPlainTextEdit>()->setFocus();
    for (int i = 1; i <= 20; ++i) {
        for (const QString &name : {u"Question %1"_s.arg(i), u"Answer %1"_s.arg(i), u"Remove FAQ"_s}) {
            press(Qt::Key_Tab);
            EXPECT_EQ(focused(), name);
        }
        EXPECT_FALSE(QApplication::focusWidget()->visibleRegion().isEmpty()) << "the page follows the focus";
    }
    press(Qt::Key_Tab);
    press(Qt::Key_Space); // adds
    QApplication::processEvents();
    EXPECT_EQ(focused(), u"Question 21"_s);
    EXPECT_FALSE(QApplication::focusWidget()->visibleRegion().isEmpty());
    QTest::keyClicks(QApplication::focusWidget(), u"New?"_s);
    press(Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), u"Yes"_s);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), child<QPushButton>(u"Add &FAQ"_s));
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().size(), 21);
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().constLast().question, u"New?"_s);
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().constLast().answer, u"Yes"_s);

    child<QPushButton>(u"Remove FAQ"_s)->setFocus();
    press(Qt::Key_Space);
    QApplication::processEvents();
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().size(), 19) << "all that have the identifier";
    EXPECT_EQ(focused(), u"Question 1"_s);
    press(Qt::Key_End);
    QTest::keyClicks(QApplication::focusWidget(), u"!"_s);
    EXPECT_EQ(desktop.modelAccess.settings.faqEntries().constFirst().question, u"Where?!"_s);
}

TEST_F(SettingsWindowTest, FitsItsWindow) {
    desktop.userDefaults.set(settingsKey::businessProfile,
                             u"Noor Boutique in Riffa. Dresses from BD 12, delivery BD 2.\nمتجر نور للأزياء"_s);
    store({{QUuid::createUuid(), u"How much is delivery?"_s, u"BD 2 anywhere in Bahrain, free above BD 30."_s},
           {QUuid::createUuid(), u"Do you take returns?"_s, u"Within 7 days, unworn and with the tag. "_s.repeated(4)},
           FAQEntry()});
    for (const auto &[name, dark, points] :
         {std::tuple(u"light"_s, false, 10), {u"dark"_s, true, 10}, {u"large"_s, false, 20}}) {
        setLook(dark, points);
        for (const bool trusted : {true, false}) {
            desktop.applications.trusted = trusted;
            open();
            expectNothingClipped("general, " + name.toStdString());
            EXPECT_EQ(child<QSlider>()->width(), 180);
        }
        open(1);
        expectNothingClipped("business, " + name.toStdString());
        EXPECT_EQ(child<QPlainTextEdit>()->height(), 8 * points);
    }
}

} // namespace
} // namespace quillory::test
