// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "EndToEnd/ChatStory.h"
#include "Platform/Linux/X11/Clipboard/X11Pasteboard.h"

#include <QCoreApplication>

#include <csignal>

namespace quillory::test {

using namespace Qt::StringLiterals;
using namespace platform::desktop;

namespace {

/// A clipboard manager, which takes over the content of a program that ends.
class ClipboardManager {
  public:
    ClipboardManager() {
        m_connection->watch();
        m_content->watch();
        m_events = m_connection->onEvent([this](const xcb_generic_event_t &event) {
            if (eventType(event) == XCB_SELECTION_REQUEST) {
                takeOver(eventAs<xcb_selection_request_event_t>(event));
            }
        });
        xcb_set_selection_owner(m_connection->get(), m_connection->window(), m_manager, XCB_CURRENT_TIME);
        m_connection->sync();
    }
    X11Connection &connection() { return *m_connection; }

  private:
    void takeOver(const xcb_selection_request_event_t &request) {
        if (request.selection != m_manager) {
            return;
        }
        // Even without an answer the program goes on serving its content for a moment, which is long enough.
        m_pasteboard.copyItems(
            [this](const auto &items) { m_pasteboard.writeObjects(items.value_or(platform::PasteboardItems())); });
    }

    std::unique_ptr<X11Connection> m_connection = X11Connection::open();
    xcb_atom_t m_manager = m_connection->atom("CLIPBOARD_MANAGER");
    /// A connection of its own, since a pasteboard refuses requests for other selections.
    std::unique_ptr<X11Connection> m_content = X11Connection::open();
    X11Pasteboard m_pasteboard{*m_content};
    platform::RegistrationHandle m_events;
};

bool isAnyKeyDown(X11Connection &connection) {
    const auto keys = connection.reply(xcb_query_keymap_reply, xcb_query_keymap(connection.get()));
    return std::ranges::any_of(keys->keys, [](std::uint8_t eight) { return eight != 0; });
}

class Termination : public ChatStory {
  protected:
    /// Waits for a condition and serves the clipboard meanwhile.
    template <typename Condition> static bool serveUntil(Condition condition) {
        return waitUntil([&] {
            QCoreApplication::processEvents();
            return condition();
        });
    }

    /// Accepts a rewrite, sends SIGTERM at the given moment of the paste, and checks what the program leaves behind.
    void endWhen(const std::function<bool()> &isReached) {
        const QByteArray copied = "what the user had copied";
        m_settings = {{u"assistantMode"_s, u"false"_s}};
        m_model.willAnswer(m_answer, Manner::answersAtOnce);
        ClipboardManager manager;
        ASSERT_NO_FATAL_FAILURE(openChat());
        keyboard::type(m_draft);
        keyboard::copy(copied, "UTF8_STRING");
        ASSERT_TRUE(rewriteIsReady(m_draft));
        keyboard::tap("Tab");
        ASSERT_TRUE(waitUntil(isReached));
        kill(m_assistant->pid(), SIGTERM);
        EXPECT_TRUE(serveUntil([&] { return !m_assistant->isRunning(); }));
        EXPECT_EQ(m_assistant->end(), 0);
        QByteArray found;
        EXPECT_TRUE(serveUntil([&] {
            QProcess reader;
            reader.start(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-t"_s, u"UTF8_STRING"_s, u"-o"_s});
            serveUntil([&] { return reader.state() == QProcess::NotRunning; });
            return (found = reader.readAllStandardOutput()) == copied;
        })) << found.data();
        EXPECT_FALSE(isAnyKeyDown(manager.connection()));
        keyboard::tap("Tab");
        EXPECT_TRUE(waitUntil([&] { return keyReached(u"Tab"_s); })) << "the key is free";
    }

    const QString m_draft = u"helo can u send me the price list"_s;
    const QString m_answer = u"Hello, can you please send me the price list?"_s;
};

INSTANTIATE_TEST_SUITE_P(In, Termination, chromiumAlone, testing::PrintToStringParamName());

TEST_P(Termination, BeforeTheKeysOfAPasteGivesTheClipboardBack) {
    endWhen([&] { return keyboard::clipboard("UTF8_STRING") == m_answer.toUtf8(); });
}

TEST_P(Termination, AfterTheKeysOfAPasteGivesTheClipboardBack) {
    endWhen([&] { return m_page.text() == m_answer; });
    EXPECT_EQ(m_page.text(), m_answer);
}

} // namespace
} // namespace quillory::test
