// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Linux/XClient.h"
#include "Platform/Linux/X11/Clipboard/X11Pasteboard.h"
#include "Platform/Linux/X11/Keys/X11Keyboard.h"
#include "RealDesktop/RealDesktop.h"
#include "SimulatedDesktop/SimulatedProcess.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <numeric>

using namespace platform;
using namespace platform::desktop;

namespace quillory::test {

using namespace Qt::StringLiterals;

namespace {

using Items = PasteboardItems;
using MaybeItems = std::optional<Items>;

/// Bytes that no two places of have in common, so that a lost or doubled portion shows.
QByteArray pattern(qsizetype size) {
    QByteArray data(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : data) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return data;
}

class X11Clipboard : public testing::Test {
  protected:
    void SetUp() override { connection->watch(); }

    MaybeItems copy() {
        std::optional<MaybeItems> result;
        pasteboard->copyItems([&](MaybeItems items) { result = std::move(items); });
        EXPECT_TRUE(spinUntil([&] { return result.has_value(); }));
        return result.value_or(std::nullopt);
    }
    /// What another program reads, for one type. It runs meanwhile, as does this one.
    QByteArray readByOther(const std::string &type) {
        const QString path = folder.filePath(u"read"_s);
        ChildProcess other(
            {"sh", "-c", "xclip -o -selection clipboard -t '" + type + "' > '" + path.toStdString() + "' 2>/dev/null"});
        EXPECT_TRUE(spinUntil([&] { return !other.isRunning(); }));
        return contentOf(path);
    }
    /// Another program that owns the clipboard, and its process, to be stopped or ended.
    ChildProcess ownByOther(const std::string &type, const QByteArray &data) {
        const QString path = folder.filePath(u"owned"_s);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(data);
        file.close();
        const qint64 before = pasteboard->changeCount();
        ChildProcess other({"xclip", "-quiet", "-i", "-selection", "clipboard", "-t", type, path.toStdString()});
        EXPECT_TRUE(spinUntil([&] { return pasteboard->changeCount() != before; }));
        return other;
    }

    QTemporaryDir folder;
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    std::unique_ptr<X11Pasteboard> pasteboard = std::make_unique<X11Pasteboard>(*connection);
    /// Another program on the display.
    std::unique_ptr<X11Connection> outsideConnection = X11Connection::open();
    X11Connection &outside = *outsideConnection;
};

TEST_F(X11Clipboard, ServesAStringInEveryFormAndAsASecret) {
    const QString text = u"Hi \u00e9 \u0645\u0631\u062d\u0628\u0627 \U0001F600\nbye"_s;
    pasteboard->clearContents();
    pasteboard->setString(text);
    for (const char *type : {"UTF8_STRING", "text/plain", "text/plain;charset=utf-8", "TEXT"}) {
        EXPECT_EQ(readByOther(type), text.toUtf8()) << type;
    }
    EXPECT_EQ(readByOther("STRING").first(5), QByteArray("Hi \xe9 "));
    EXPECT_EQ(readByOther("x-kde-passwordManagerHint"), "secret");
    EXPECT_EQ(readByOther("image/png"), "");
    EXPECT_EQ(pasteboard->fetchCount(), 6) << "all but the last";
    pasteboard->clearContents();
    EXPECT_TRUE(spinUntil([&] { return outside.ownerOf(outside.atom("CLIPBOARD")) == XCB_NONE; }));
    EXPECT_EQ(copy(), Items{});
}

TEST_F(X11Clipboard, GivesBackWhatTheUserHadWithAllTypesAndLargeContent) {
    const QByteArray picture = pattern(20LL * 1024 * 1024 + 3);
    const Items given{{{{u"text/html"_s, "<b>x</b>"},
                        {u"image/png"_s, picture},
                        {u"application/x-empty"_s, ""},
                        {u"UTF8_STRING"_s, "x"}}}};
    outside.watch();
    X11Pasteboard others(outside);
    others.writeObjects(given);
    const Items saved = copy().value_or(Items{});
    EXPECT_TRUE(saved == given); // not EXPECT_EQ, which would print it
    pasteboard->clearContents();
    pasteboard->setString(u"suggestion"_s);
    pasteboard->clearContents();
    pasteboard->writeObjects(saved);
    EXPECT_EQ(readByOther("text/html"), "<b>x</b>");
    EXPECT_TRUE(readByOther("image/png") == picture);
    EXPECT_TRUE(copy() == given); // its own content
    // Two programs read at once, one of which goes away in the midst of it.
    MaybeItems first;
    others.copyItems([&](MaybeItems items) { first = std::move(items); });
    {
        X11Pasteboard leaving(outside);
        leaving.copyItems([](const MaybeItems &) {});
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(spinUntil([&] { return first.has_value(); }));
    EXPECT_TRUE(first == given);
}

TEST_F(X11Clipboard, ReadsWhatOtherProgramsOwnAndTellsWhenItChanges) {
    const QByteArray picture = pattern(3LL * 1024 * 1024);
    ChildProcess first = ownByOther("image/png", picture);
    const Items expected{{{{u"image/png"_s, picture}}}};
    EXPECT_TRUE(copy() == expected);
    pasteboard->clearContents();
    pasteboard->setString(u"suggestion"_s);
    const qint64 ours = pasteboard->changeCount();
    EXPECT_EQ(readByOther("UTF8_STRING"), "suggestion");
    EXPECT_EQ(pasteboard->changeCount(), ours); // reading is no change
    ChildProcess second = ownByOther("UTF8_STRING", "copied meanwhile");
    EXPECT_NE(pasteboard->changeCount(), ours);
    EXPECT_EQ(copy(), (Items{{{{u"UTF8_STRING"_s, "copied meanwhile"}}}}));
}

TEST_F(X11Clipboard, DoesNotWaitForAnOwnerThatHangsOrVanishes) {
    ChildProcess hung = ownByOther("UTF8_STRING", "never told");
    kill(hung.pid(), SIGSTOP);
    EXPECT_EQ(copy(), std::nullopt) << "overwriting it would lose it";
    ChildProcess vanishing = ownByOther("UTF8_STRING", "gone");
    kill(vanishing.pid(), SIGSTOP);
    MaybeItems result;
    pasteboard->copyItems([&](MaybeItems items) { result = std::move(items); });
    kill(vanishing.pid(), SIGKILL);
    EXPECT_TRUE(spinUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result, Items{});
}

TEST_F(X11Clipboard, KeepsTheTypesThatCameWhenOneNeverDoes) {
    // An owner that names two types, and many that do not exist, and delivers one.
    const xcb_atom_t good = outside.atom("text/good"), bad = outside.atom("text/bad"),
                     targets = outside.atom("TARGETS");
    std::vector<xcb_atom_t> offered(20'000);
    std::iota(offered.begin(), offered.end(), 1'000'000);
    offered[0] = bad;
    offered[1] = good;
    const auto registration = outside.onEvent([&](const xcb_generic_event_t &event) {
        const auto &request = eventAs<xcb_selection_request_event_t>(event);
        if (eventType(event) != XCB_SELECTION_REQUEST || request.target == bad) {
            return;
        }
        const auto answer = [&](xcb_atom_t type, std::uint8_t bits, std::size_t count, const void *data) {
            xcb_change_property(outside.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, type, bits,
                                static_cast<std::uint32_t>(count), data);
        };
        request.target == targets ? answer(XCB_ATOM_ATOM, 32, offered.size(), offered.data())
                                  : answer(good, 8, 4, "fine");
        std::array<xcb_selection_notify_event_t, 2> notify{};
        notify[0] = {XCB_SELECTION_NOTIFY, 0, 0, request.time, request.requestor, request.selection, request.target,
                     request.property};
        xcb_send_event(outside.get(), 0, request.requestor, 0, reinterpret_cast<const char *>(notify.data()));
        outside.flush();
    });
    outside.watch();
    xcb_set_selection_owner(outside.get(), outside.window(), outside.atom("CLIPBOARD"), XCB_CURRENT_TIME);
    outside.sync();
    const unsigned int before = xcb_no_operation(connection->get()).sequence;
    EXPECT_EQ(copy(), (Items{{{{u"text/good"_s, "fine"}}}}));
    EXPECT_LT(xcb_no_operation(connection->get()).sequence - before, 1000U) << "requests, which take the main thread";
}

TEST_F(X11Clipboard, HandsTheUsersContentToAClipboardManagerAtTheEnd) {
    xcb_set_selection_owner(outside.get(), outside.window(), outside.atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
    const auto isAskedToSave = [&](const std::function<void()> &put) {
        pasteboard = std::make_unique<X11Pasteboard>(*connection);
        put();
        outside.sync();
        pasteboard.reset(); // a manager that does not answer is waited for a moment only
        outside.sync();
        const auto asked = outside.takeEvents([&](const xcb_generic_event_t &event) {
            return eventType(event) == XCB_SELECTION_REQUEST &&
                   eventAs<xcb_selection_request_event_t>(event).target == outside.atom("SAVE_TARGETS");
        });
        return !asked.empty();
    };
    PasteboardItem content{{{u"UTF8_STRING"_s, "the user's"}}};
    EXPECT_TRUE(isAskedToSave([&] { pasteboard->writeObjects({content}); }));
    content.representations.emplace_back(u"x-kde-passwordManagerHint"_s, "secret");
    EXPECT_FALSE(isAskedToSave([&] { pasteboard->writeObjects({content}); }));
    EXPECT_FALSE(isAskedToSave([&] { pasteboard->setString(u"a suggestion"_s); }));
}

TEST(X11ConnectionTest, MasksOfOneWindowDoNotUndoEachOther) {
    const auto connection = X11Connection::open();
    const auto mask = [&] {
        const auto question = xcb_get_window_attributes(connection->get(), connection->root());
        return connection->reply(xcb_get_window_attributes_reply, question)->your_event_mask;
    };
    auto moves = connection->selectEvents(connection->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    {
        const auto both = connection->selectEvents(connection->root(),
                                                   XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
        EXPECT_EQ(mask(), XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    EXPECT_EQ(mask(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    moves.reset();
    EXPECT_EQ(mask(), XCB_EVENT_MASK_NO_EVENT);
}

TEST(X11ConnectionTest, EndsTheProgramWhenTheServerGoesAway) {
    EXPECT_EQ(X11Connection::open(":9999"), nullptr);
    auto desktop = std::make_unique<RealDesktop>();
    const auto connection = X11Connection::open();
    ASSERT_NE(connection, nullptr);
    connection->watch();
    QMetaObject::invokeMethod(
        qApp, [&] { desktop.reset(); }, Qt::QueuedConnection);
    EXPECT_EQ(QCoreApplication::exec(), 1);
    EXPECT_TRUE(connection->isBroken());
    EXPECT_EQ(connection->serverTime(), 0U);
    X11Pasteboard pasteboard(*connection);
    pasteboard.setString(u"nowhere"_s);
    EXPECT_FALSE(X11Keyboard(*connection).keysDown().any());
}

} // namespace
} // namespace quillory::test
