// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EndToEnd/ChatStory.h"

namespace quillory::test {

using namespace Qt::StringLiterals;

/// A shop owner looks at a chat; the message box is empty.
class ReplyStory : public ChatStory {
  protected:
    /// The shop's profile and questions are set, and the model has an answer.
    ReplyStory() {
        m_settings = {{u"businessProfile"_s, u"\nDate House, a gift shop in Riffa.\n"_s},
                      {u"faqEntries"_s,
                       uR"([{"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D10","question":"Delivery?","answer":"1 BHD."},)"
                       R"({"id":"5F0C1E5E-2F0B-4B52-8B0B-1F1C3E8A9D11","question":"Hours?","answer":"9 to 9"}])"_s}};
        m_model.willAnswer(m_reply, Manner::answersAtOnce);
    }

    /// The conversation that a reply was last asked for.
    [[nodiscard]] std::string transcriptAskedFor() const {
        const auto questions = m_model.questions();
        return questions.empty() || !questions.back().isForReply ? std::string() : questions.back().conversation();
    }
    /// Whether a finished reply to what the page shows is on its card.
    [[nodiscard]] bool replyIsReady() const {
        const bool ready = waitUntil([this] {
            return loggedSinceDraft(u" complete ("_s) && transcriptAskedFor() == transcriptOfPage() && panelIsUp();
        });
        EXPECT_EQ(transcriptAskedFor(), transcriptOfPage());
        return ready;
    }
    /// Whether the log contains the text since a reply was last asked for.
    [[nodiscard]] static bool loggedSinceDraft(const QString &text) {
        const QString log = Assistant::log();
        return log.indexOf(text, std::max<qsizetype>(0, log.lastIndexOf(u"drafting reply ("_s))) >= 0;
    }
    /// Whether no request comes for longer than the program waits before it asks again about the same conversation.
    [[nodiscard]] bool staysQuiet() const {
        const auto before = m_model.questions().size();
        return !waitUntil([&] { return m_model.questions().size() > before; }, 1500);
    }

    const QString m_reply = u"Hello Mariam 😊 Delivery is 1 BHD, to any place in Bahrain."_s;
};

} // namespace quillory::test
