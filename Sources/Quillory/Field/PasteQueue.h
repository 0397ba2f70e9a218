// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/LifeToken.h"
#include "Platform/Pasteboard.h"
#include "Quillory/Field/ActionSequence.h"
#include "Quillory/Field/FieldSnapshot.h"

#include <QString>

#include <deque>
#include <optional>

namespace platform {
class KeyPoster;
class Workspace;
} // namespace platform

namespace quillory {

class AXText;

/// A text that is to replace the content of a field by pasting.
struct PasteRequest {
    QString text;
    platform::AXUIElement target;
    /// What the field last looked like, to recognise it if the application has replaced its element.
    std::optional<FieldSnapshot> lastSeen;
};

/// Pastes texts into fields, one after the other. Main thread only.
class PasteQueue {
  public:
    /// What pasting takes. All of it outlives the queue.
    struct Services {
        platform::KeyPoster &keys;
        platform::MainQueue &mainQueue;
        platform::Pasteboard &pasteboard;
        platform::Workspace &workspace;
    };
    PasteQueue(const AXText &ax, const Services &services);
    /// During a paste, gives the pasteboard its content back at once.
    ~PasteQueue();
    PasteQueue(const PasteQueue &) = delete;
    PasteQueue &operator=(const PasteQueue &) = delete;

    /// Brings the field's application to the front, puts the text on the pasteboard, selects all and pastes with
    /// synthesised keys, and then gives the pasteboard its content back. Returns at once; about a second passes.
    /// Nothing is typed unless the field is seen to have the keyboard focus, the pasteboard still holds the text, and
    /// what it held before can be given back. What the user copies meanwhile is left alone. A request that comes before
    /// the last one has ended waits for it.
    void paste(PasteRequest request);
    /// Whether a text is on its way into a field.
    [[nodiscard]] bool isPasting() const { return !m_requests.empty(); }

  private:
    [[nodiscard]] const PasteRequest &request() const { return m_requests.front(); }
    void begin();
    void save(int attempts);
    void activateTarget();
    void putText();
    void awaitFocus();
    void typeAndRestore(bool textIsThere);
    void ifTextIsThere(std::function<void(bool)> then);
    [[nodiscard]] Attempt fingersAreUp() const;
    [[nodiscard]] Attempt focusIsThere();
    [[nodiscard]] Attempt textIsFetched() const;
    [[nodiscard]] bool isCopyOfTarget(const platform::AXUIElement &focused) const;
    void giveUp(const char *reason);
    void finish();
    void restorePasteboard();
    void next();

    const AXText &m_ax;
    Services m_services;
    std::deque<PasteRequest> m_requests;
    platform::PasteboardItems m_saved;
    qint64 m_changeCount = 0;
    qint64 m_fetchCount = 0;
    bool m_activatedAgain = false;
    bool m_textIsOut = false;
    ActionSequence m_steps;
    platform::LifeToken m_life;
};

} // namespace quillory
