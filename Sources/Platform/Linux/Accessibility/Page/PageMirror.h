// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Accessibility/Page/SubtreeReader.h"

#include <functional>
#include <memory>

namespace platform::desktop::atspi {

/// What is read: a subtree, within limits.
struct PageName {
    ElementRef root;
    AXSubtreeLimits limits;
    friend bool operator==(const PageName &, const PageName &) = default;
};

/// A whole read of a page; never changed once it is given out.
struct PageCopy {
    PageName page;
    /// With frames in pixels of the screen.
    std::vector<AXSubtreeNode> items;
    Clock::time_point begunAt;
};

/// The last copy of the mirrored page, and whether a change since it was begun has been reported.
struct MirroredPage {
    std::shared_ptr<const PageCopy> copy;
    bool isStale = false;

    [[nodiscard]] bool shows(const PageName &page) const { return copy != nullptr && copy->page == page; }
    [[nodiscard]] bool wasReadSince(const PageName &page, Clock::time_point begin) const {
        return shows(page) && copy->begunAt >= begin;
    }
    /// Whether it still holds. Not every change is reported, so a copy holds for a few seconds at most.
    [[nodiscard]] bool isFresh(const PageName &page, Clock::time_point now) const;
};

/// Keeps a copy of one page while somebody asks for it. After its application has reported a change, the page is read
/// anew before the next question, at a bounded rate; also every few seconds, because no application reports everything.
/// An unchanged page costs no question in between. Belongs to the reader's thread.
class PageMirror {
  public:
    using Publish = std::function<void(const MirroredPage &)>;

    /// giveWay: called during a read, to do what cannot wait for its end.
    PageMirror(Connection &connection, std::function<void()> giveWay, Publish publish);

    /// Notes that the page is asked for, and reads it now unless the copy is fresh and not older than notBefore. Where
    /// any age will do (a default value), the application gets its pause first.
    void refresh(const PageName &page, Clock::time_point notBefore);
    /// Does what is due. field: where the focused field stands; when it has moved, so has the page's content.
    void settle(const std::optional<Rect> &field);
    /// When settle() must be called again.
    [[nodiscard]] Clock::time_point nextLook() const;

  private:
    void want(const PageName &page);
    void read(bool mayGoOn);
    void onChange(const ElementRef &source);
    void noteChange();
    void publish() const { m_publish({m_copy, m_isStale}); }
    void listen();
    void stopListening();
    void forget();
    void sendRegistrations(bool isOn) const;
    [[nodiscard]] bool isWanted(Clock::time_point now) const { return now < m_wantedUntil; }
    [[nodiscard]] bool hasCopy() const { return m_copy != nullptr && m_copy->page == m_page; }

    Connection &m_connection;
    std::function<void()> m_giveWay;
    Publish m_publish;
    SubtreeReader m_reader;
    PageName m_page;
    Clock::time_point m_wantedUntil;
    /// When it was last asked for, and how long after the time before.
    Clock::time_point m_askedAt;
    Clock::duration m_askedEvery{};
    std::shared_ptr<const PageCopy> m_copy;
    bool m_isReading = false;
    /// The changes reported since the copy was begun.
    bool m_isStale = false;
    Clock::time_point m_firstChangeAt;
    Clock::time_point m_lastChangeAt;
    /// When the application may be read again.
    Clock::time_point m_readyAt;
    std::optional<Rect> m_field;
    std::vector<Connection::Subscription> m_subscriptions;
};

} // namespace platform::desktop::atspi
