// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

namespace {

/// Who said what, and where the conversation is cut off.
class Transcript : public ReplyStory {};

INSTANTIATE_TEST_SUITE_P(In, Transcript, everyBrowser, testing::PrintToStringParamName());

TEST_P(Transcript, OfAnArabicPageIsInLogicalOrderAndMarkedByTheSideThatTheTextStandsOn) {
    const QString reply = QStringLiteral("هلا مريم! التوصيل Riffa بدينار ١ 🚚");
    m_model.willAnswer(reply, Manner::answersAtOnce);
    ASSERT_NO_FATAL_FAILURE(openChat(QStringLiteral("?language=ar&box=textarea")));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(),
                testing::AllOf(testing::HasSubstr("\n«you» الأزرق Blue Box رقم 7، هل هو متوفر؟\n"),
                               testing::HasSubstr("\n«customer» نعم متوفر ٣ قطع، والتوصيل إلى Riffa مجاني 🚚\n"),
                               testing::HasSubstr("\n٢ رسائل غير مقروءة\n")));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(reply));
    expectUntouched();
}

TEST_P(Transcript, OfThousandsOfMessagesOfWhichThePageHoldsThoseInView) {
    ASSERT_NO_FATAL_FAILURE(openChat(QStringLiteral("?long=2600")));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::EndsWith("\n«customer» Message 2600"));
    ASSERT_TRUE(m_page.order("scroll", QStringLiteral("1000")));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("\n«you» Message 1005\n"));
}

TEST_P(Transcript, OfThousandsOfElementsIsCutOffAfterItsFirstFourHundredLines) {
    ASSERT_NO_FATAL_FAILURE(openChat(QStringLiteral("?long=700&rows=all")));
    ASSERT_TRUE(replyIsReady());
    EXPECT_THAT(transcriptAskedFor(), testing::HasSubstr("Message 399"));
    keyboard::tap("Tab");
    EXPECT_TRUE(boxHolds(QStringLiteral("It is 1 BHD to any place in Bahrain 😊")));
}

} // namespace

} // namespace quillory::test
