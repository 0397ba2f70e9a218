// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/ChatContext.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace quillory {
namespace {

using platform::AXAttribute;
using platform::Rect;
using test::Node;
namespace axRole = platform::axRole;

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

// A text of this width with this left edge, beside a field that spans 300 to 700.
platform::AXSubtreeNode staticText(const char *value, double x, double width = 100) {
    return {1, QString(axRole::staticText), text(value), Rect{x, 0, width, 20}};
}
const Rect field{300, 800, 400, 40};

TEST(ChatContext, TellsNoiseFromMessages) {
    for (const char *noise :
         {"9:05", "12:45 PM", "7:30pm", "٩:٠٥", "3", "١٢", "Online", "Typing…", "typing...", "Recording audio…",
          "click here for contact info", "1 unread message", "3 Unread messages"}) {
        EXPECT_TRUE(ChatContext::isNoise(text(noise))) << noise;
    }
    for (const char *message : {"12:45 is fine", "123:45", "9:05 Pm", "3 unread", "ok", "Online now", "3 pieces"}) {
        EXPECT_FALSE(ChatContext::isNoise(text(message))) << message;
    }
}

TEST(ChatContext, MarksMessagesByTheSideTheyStandOn) {
    const auto column = ChatContext::columnAround(field);
    // The column spans 260 to 740, so a text of 100 has gaps that add up to 380.
    const std::vector<std::pair<double, const char *>> cases{
        {260, "«customer» hello"}, {419.9, "«customer» hello"}, {420, "hello"}, {450, "hello"}, {480, "hello"},
        {480.1, "«you» hello"},    {640, "«you» hello"},
    };
    for (const auto &[x, expected] : cases) {
        EXPECT_EQ(ChatContext::messageLines({staticText("hello", x)}, column), QStringList{text(expected)}) << x;
    }
    EXPECT_EQ(ChatContext::messageLines({staticText("far", -5000), staticText("near", 400)}, {}),
              (QStringList{u"far"_s, u"near"_s}))
        << "without a field nothing is excluded and nobody is marked";
}

TEST(ChatContext, KeepsOnlyMessagesOfTheColumn) {
    const auto column = ChatContext::columnAround(field);
    const std::vector<platform::AXSubtreeNode> nodes{
        {1, u"AXHeading"_s, u"heading"_s, Rect{450, 0, 100, 20}},
        {1, QString(axRole::staticText), u"without a frame"_s, {}},
        {1, QString(axRole::staticText), {}, Rect{450, 0, 100, 20}},
        staticText("k", 450),
        staticText("👨‍👩‍👧", 450),
        staticText("12:45 PM", 450),
        staticText("left out", 300 - 41 - 50),
        staticText("left in", 300 - 39 - 50),
        staticText("right in", 700 + 39 - 50),
        staticText("right out", 700 + 41 - 50),
        staticText("  trimmed \n", 450),
    };
    EXPECT_EQ(ChatContext::messageLines(nodes, column),
              (QStringList{u"«customer» left in"_s, u"«you» right in"_s, u"trimmed"_s}));
    EXPECT_EQ(ChatContext::messageLines(std::vector(500, staticText("again", 450)), column).size(), 400);
}

TEST(ChatContext, CutsTheTranscriptFromTheTop) {
    QStringList seventy;
    for (int i = 0; i < 70; ++i) {
        seventy.append(u"line %1"_s.arg(i));
    }
    EXPECT_EQ(ChatContext::transcript(seventy), seventy.mid(10).join(u'\n'));
    const QString oneLine(9000, u'x');
    EXPECT_EQ(ChatContext::transcript({u"before"_s, oneLine}), oneLine);
    // Characters count, not code units; and the line breaks between lines count too.
    const QString thousandEmoji = u"👋🏽"_s.repeated(1000);
    const QStringList eight(8, thousandEmoji);
    EXPECT_EQ(ChatContext::transcript(eight.mid(1) + QStringList{thousandEmoji.chopped(28)}).count(u'\n'), 7);
    EXPECT_EQ(ChatContext::transcript(eight.mid(1) + QStringList{thousandEmoji.chopped(24)}).count(u'\n'), 6);
}

struct Recognition : testing::Test {
    test::SimulatedDesktop desktop;
    const AXText ax{desktop.applications, desktop.applications};

    Node window(const char *bundle, const char *title) {
        return desktop.applications.launch({1, text(bundle), u"App"_s}, text(title));
    }
};

TEST_F(Recognition, GoesByTheAddressOfThePageBeforeTheTitle) {
    for (const auto &[bundle, title, address, isChat] :
         std::vector<std::tuple<const char *, const char *, const char *, bool>>{
             {"net.whatsapp.WhatsApp", "Anything", nullptr, true},
             {"com.example.net.whatsapp", "WhatsApp", nullptr, false},
             {"org.chromium.Chromium", "Shop", "https://web.whatsapp.com/", true},
             {"org.chromium.Chromium", "WhatsApp", "https://example.com/web.whatsapp.com", false},
             {"org.chromium.Chromium", "WhatsApp", "file:///tmp/page.html", false},
             {"org.chromium.Chromium", "(2) WHATSAPP - Chromium", nullptr, true},
             {"org.chromium.Chromium", "Mail", nullptr, false},
             {"ORG.CHROMIUM", "WhatsApp", "https://web.whatsapp.com/", false},
         }) {
        const Node page = window(bundle, title)->add(axRole::webArea);
        if (address != nullptr) {
            page->set(AXAttribute::url, QUrl(text(address)));
        }
        EXPECT_EQ(ChatContext::isChatApp(ax, page->add(axRole::textArea)->element()), isChat) << bundle << ' ' << title;
    }
}

TEST_F(Recognition, ReadsThePageAroundTheFieldAlone) {
    const Node browser = window("org.chromium.Chromium", "WhatsApp");
    browser->addText(u"a tab of the browser"_s, {400, 0, 100, 20});
    const Node page = browser->add(axRole::webArea);
    const Node box = page->add(axRole::textArea, field);
    EXPECT_FALSE(ChatContext::extract(box->element()).has_value());

    const Node bubble = page->addText(u"is it in stock?"_s, {260, 100, 100, 20});
    bubble->addText(u"asks Amal"_s, {260, 120, 100, 20});
    page->addText(u"yes it is"_s, {640, 140, 100, 20});
    const auto conversation = ChatContext::extract(box->element());
    ASSERT_TRUE(conversation.has_value());
    EXPECT_EQ(conversation->text, u"«customer» is it in stock?\n«customer» asks Amal\n«you» yes it is"_s);

    page->addText(u"good"_s, {260, 160, 100, 20});
    EXPECT_NE(ChatContext::extract(box->element())->hash, conversation->hash);
    box->gone = true;
    EXPECT_FALSE(ChatContext::extract(box->element()).has_value());
}

} // namespace
} // namespace quillory
