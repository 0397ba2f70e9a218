// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "EndToEnd/ReplyStory.h"

namespace quillory::test {

ReplyStory::ReplyStory() {
    m_settings = {{u"businessProfile"_qs, u"\nDate House, a gift shop in Riffa.\n"_qs},
                  {u"faqEntries"_qs,
                   uR"([{"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D10","question":"Delivery?","answer":"1 BHD."},)"
                   R"({"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D11","question":"Hours?","answer":"9 to 9"}])"_qs}};
    m_model.willAnswer(u"It is 1 BHD to any place in Bahrain 😊"_qs, Manner::answersAtOnce);
}

std::string ReplyStory::transcriptAskedFor() const {
    const auto questions = m_model.questions();
    return questions.empty() || !questions.back().isForReply() ? std::string() : questions.back().conversation();
}

bool ReplyStory::replyIsReady() const {
    const bool ready = waitUntil([this] {
        return timesLoggedSinceDraft(u" complete ("_qs) > 0 && transcriptAskedFor() == transcriptOfPage() &&
               panelIsUp();
    });
    EXPECT_EQ(transcriptAskedFor(), transcriptOfPage());
    return ready;
}

int ReplyStory::timesLoggedSinceDraft(const QString &text) {
    const QString log = Assistant::log();
    return static_cast<int>(log.mid(log.lastIndexOf(u"drafting reply ("_qs)).count(text));
}

bool ReplyStory::staysQuiet() const {
    const int before = timesAsked();
    return !waitUntil([&] { return timesAsked() > before; }, 1500);
}

void ReplyStory::clearBox() {
    keyboard::tap("ctrl+a");
    keyboard::tap("BackSpace");
    ASSERT_TRUE(boxHolds(QString()));
}

} // namespace quillory::test
