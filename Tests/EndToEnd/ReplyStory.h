// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "EndToEnd/ChatStory.h"

namespace quillory::test {

/// A shop owner who looks at a chat with an empty message box.
class ReplyStory : public ChatStory {
  protected:
    using Question = ModelService::Question;

    /// The shop's profile and questions are set, and the model has an answer.
    ReplyStory();

    [[nodiscard]] int timesAsked() const { return static_cast<int>(m_model.questions().size()); }
    /// The conversation that a reply was last asked for.
    [[nodiscard]] std::string transcriptAskedFor() const;
    /// A reply to what the page shows is on its card and may be accepted.
    [[nodiscard]] bool replyIsReady() const;
    /// How often the log says so since a reply was last asked for.
    [[nodiscard]] static int timesLoggedSinceDraft(const QString &text);
    /// No question comes for longer than the program waits before it asks for the same conversation again.
    [[nodiscard]] bool staysQuiet() const;
    /// As the user would, to write something else.
    void clearBox();
};

} // namespace quillory::test
