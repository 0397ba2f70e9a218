// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/LifeToken.h"
#include "Platform/MainQueue.h"
#include "Quillory/Field/ChatContext.h"
#include "Quillory/Monitor/DraftRules.h"
#include "Quillory/Monitor/ModelStream.h"
#include "Quillory/Monitor/ReplyRules.h"
#include "Quillory/Panel/SuggestionPanelController.h"
#include "Quillory/Records/ChoiceStats.h"
#include "Quillory/Settings/AppSettings.h"
#include "Quillory/SuggestionKind.h"
#include "Quillory/Tasks.h"
#include "Quillory/Text.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace quillory {

class OpenRouterClient;
class PasteQueue;

/// The heart of the program: looks at the focused text field ten times a second, and in a chat's message box decides
/// when to ask which models, screens their answers, shows them on cards, and carries out accept and dismiss. One for
/// the whole run. Main thread only.
class TypingMonitor {
  public:
    /// What the monitor works with. All of it outlives the monitor.
    struct Parts {
        const AppSettings &settings;
        const OpenRouterClient &client;
        const ChoiceStats &stats;
        const AXText &ax;
        PasteQueue &pastes;
        SuggestionPanelController &panel;
        platform::Accessibility &accessibility;
        platform::MainQueue &mainQueue;
        /// This program's own process; its fields are left alone.
        qint32 ownPid;
    };
    explicit TypingMonitor(const Parts &parts);
    /// Asks running requests to stop and waits until they have.
    ~TypingMonitor();
    TypingMonitor(const TypingMonitor &) = delete;
    TypingMonitor &operator=(const TypingMonitor &) = delete;

    /// Listens to the panel and starts the poll timer. Once.
    void start();

  private:
    using Element = platform::AXUIElement;
    using StreamPointer = std::shared_ptr<ModelStream>;

    // The poll tick (TypingMonitor.cpp).
    void tick();
    void resetTracking();
    [[nodiscard]] bool followTrust();
    void followFocus(const Element &element);
    [[nodiscard]] bool adoptRecreated(const Element &element);
    [[nodiscard]] bool focusMayComeBack();
    void adopt(const Element &element, bool isText);
    void logFocus(const Element &element, bool isText) const;
    void followField(const Element &element);
    /// What the gate decides by. Read step by step, so that nothing is asked that no longer matters.
    [[nodiscard]] FieldSituation situation(const Element &element) const;
    void followFrame(const Element &element);
    void followEmptyField(const Element &element, const QString &value, bool mayReply);
    void followChangedDraft(const QString &value);
    void followPause(const Element &element, const QString &value);
    void showSuggestion(const Element &element, const QString &value);
    void prefetchSuggestion(const Element &element, const QString &value);
    void dropSuggestion();

    // Drafting replies (TypingMonitor.cpp).
    void assistantTick(const Element &element);
    [[nodiscard]] ReplyHistory replyHistory(platform::Instant now) const;
    void rememberConversation(const ReplyContext &context);
    void draftReply(const Element &element, const QString &conversation, platform::Instant now);

    // Model requests (TypingMonitorStreams.cpp).
    void startStreams(const QString &source, const Element &element, bool showPanel, SuggestionKind kind);
    void launch(const StreamPointer &stream, int index, const QString &source, const std::optional<QString> &context,
                SuggestionKind kind);
    void presentStreams(const Element &element);
    void cancelStreams();
    [[nodiscard]] bool isLive(const StreamPointer &stream, const QString &source) const;
    void handleChunk(const StreamPointer &stream, int index, const QString &source, const QString &text);
    void handleFailure(const StreamPointer &stream, int index, const QString &source);
    [[nodiscard]] SuggestionCards cards() const;
    /// The field's frame, else the last one known, or absent.
    [[nodiscard]] std::optional<platform::Rect> anchor(const Element &element) const;

    // What comes of an answer (TypingMonitorStreams.cpp).
    void handleCompletion(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                          const QString &rawFinal);
    void fail(const StreamPointer &stream, int index, const QString &message);
    void complete(const StreamPointer &stream, int index, const QString &source, SuggestionKind kind,
                  const QString &answer);
    void showAnswer(const ModelStream &stream, int index);

    // Accept and dismiss (TypingMonitorAccept.cpp).
    void connectPanel();
    /// The card that the user chose, its stream, and when: only a conversation read since then will do.
    struct Choice {
        qint64 index;
        StreamPointer stream;
        platform::AXFreshness askedAt;
    };
    void accept(qint64 index);
    void accept(const Choice &choice, int looksLeft);
    void insert(const QString &text, const Element &target);
    [[nodiscard]] StreamPointer streamAt(qint64 index) const;
    /// The conversation that a reply would go into; absent for a rewrite.
    [[nodiscard]] std::optional<ChatContext::Look> guardedLook(const Element &target, platform::AXFreshness since,
                                                               bool isLast) const;
    /// Whether the reply was drafted for a conversation; logs if not.
    [[nodiscard]] bool isDraftedFor(const ChatContext::Conversation &conversation) const;
    void dismiss();
    void recordChoice(std::size_t index) const;
    void acceptForDebugging();

    const AppSettings &m_settings;
    const OpenRouterClient &m_client;
    const ChoiceStats &m_stats;
    const AXText &m_ax;
    PasteQueue &m_pastes;
    SuggestionPanelController &m_panel;
    platform::Accessibility &m_accessibility;
    platform::MainQueue &m_mainQueue;
    const qint32 m_ownPid;
    platform::RegistrationHandle m_pollTimer;

    std::optional<Element> m_currentElement;
    /// In accessibility coordinates. All zero until the tracked element has reported a frame.
    platform::Rect m_currentElementFrame;
    QString m_lastText;
    /// Absent if no draft is pending: the field is empty, new, or holds what was just accepted.
    std::optional<platform::Instant> m_lastChangeAt;
    std::optional<bool> m_lastTrusted;
    bool m_focusIsBrowserUI = false;
    bool m_focusIsChatApp = false;
    /// The text of the last request; it is not sent twice.
    std::optional<QString> m_lastRequestedSource;
    std::optional<QString> m_lastInsertedText;
    platform::Instant m_lastInsertAt = platform::distantPast;

    std::vector<StreamPointer> m_streams;
    /// The text that the streams were started for. Every result is checked against it.
    std::optional<QString> m_streamSource;
    SuggestionKind m_streamKind = SuggestionKind::rewrite;

    platform::Instant m_lastContextAt = platform::distantPast;
    std::optional<std::int64_t> m_lastDraftedHash;
    platform::Instant m_lastDraftStartAt = platform::distantPast;
    /// The conversation whose drafted reply the user dismissed.
    std::optional<std::int64_t> m_dismissedHash;
    /// Since when something other than a text field has had the focus.
    std::optional<platform::Instant> m_focusFlapSince;
    std::optional<QString> m_replyContextLastLine;
    text::Set m_replyContextLines;

    platform::LifeToken m_life;
    /// Last, so that all requests have ended before the rest is destroyed.
    Tasks m_tasks;
};

} // namespace quillory
