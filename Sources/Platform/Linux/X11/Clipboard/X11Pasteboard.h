// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/X11/Clipboard/X11SelectionOwner.h"
#include "Platform/Linux/X11/Clipboard/X11SelectionReader.h"
#include "Platform/Linux/X11/X11SelectionWatch.h"
#include "Platform/Pasteboard.h"

namespace platform::desktop {

/// The CLIPBOARD selection, which holds one item: reading gives one, writing joins several. See ../README.md.
class X11Pasteboard final : public Pasteboard {
  public:
    explicit X11Pasteboard(X11Connection &connection);
    /// Hands the user's own content to the desktop's clipboard manager, if this program has it and it is no secret.
    ~X11Pasteboard() override;
    X11Pasteboard(const X11Pasteboard &) = delete;
    X11Pasteboard &operator=(const X11Pasteboard &) = delete;

    void copyItems(std::function<void(std::optional<PasteboardItems>)> done) override;
    void copyString(std::function<void(std::optional<QString>)> done) override;
    void clearContents() override;
    void setString(const QString &text) override;
    void writeObjects(const PasteboardItems &items) override;
    [[nodiscard]] qint64 changeCount() override;
    [[nodiscard]] qint64 fetchCount() override { return m_owner.timesServed(); }

  private:
    struct Form {
        xcb_atom_t type;
        std::uint8_t format;
    };
    struct Reading {
        std::unique_ptr<X11SelectionReader> reader;
        std::function<void(std::optional<PasteboardItems>)> done;
    };

    void ownerChanged(const X11SelectionWatch::Change &change);
    void write(std::vector<X11SelectionValue> values);
    void giveUpIfStillCleared();
    void finishReading(int number, const std::optional<std::vector<X11SelectionValue>> &values);
    [[nodiscard]] PasteboardItems itemsFrom(const std::vector<X11SelectionValue> &values);
    [[nodiscard]] X11SelectionValue valueFrom(const QString &type, const QByteArray &data);

    X11Connection &m_connection;
    X11SelectionWatch m_watch;
    X11SelectionOwner m_owner;
    /// By their numbers.
    std::map<int, Reading> m_readings;
    int m_lastReading = 0;
    /// The form in which each type last came, so that it can be given back in the same form.
    std::map<QString, Form> m_forms;
    bool m_isCleared = false;
    bool m_holdsUserContent = false;
    qint64 m_changeCount = 0;
    xcb_timestamp_t m_givenUpAt = XCB_CURRENT_TIME;
    QObject m_context;
};

} // namespace platform::desktop
