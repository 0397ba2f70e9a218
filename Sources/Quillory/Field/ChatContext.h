// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"
#include "Quillory/Field/AXText.h"
#include "Quillory/Text.h"

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

/// Reads the conversation visible around a message box from the application's accessibility tree. Stateless. Functions
/// that take an element are for the main thread only. What cannot be read counts as absent.
namespace quillory::ChatContext {

/// The visible conversation, oldest line first. Each line says who wrote it, if that is known.
struct Conversation {
    QString text;
    /// Equal for equal texts, during one run of the program.
    std::int64_t hash = 0;
};

/// The conversation around a message box as it was last seen; absent if there is none.
[[nodiscard]] std::optional<Conversation> extract(const platform::AXUIElement &element);
/// The same, but distinguishes a page without a conversation from one that cannot be read at the moment.
struct Look {
    bool isAnswered = false;
    std::optional<Conversation> conversation;
};
[[nodiscard]] Look look(const platform::AXUIElement &element, platform::AXFreshness freshness);
/// Starts reading a conversation that will be needed soon, so that it is no older than this. Never waits.
void prepare(const platform::AXUIElement &element, platform::AXFreshness freshness);
/// What an element was taken for, and on what evidence.
struct Recognition {
    enum class Evidence {
        /// The bundle identifier of a chat program.
        chatProgram,
        /// The bundle identifier of a program that is neither a chat program nor a browser.
        otherProgram,
        /// The host of the page's address.
        pageAddress,
        /// The title of the browser's window, if the page gives no address.
        windowTitle,
    };
    Evidence evidence = Evidence::otherProgram;
    bool isChat = false;
    /// The identifier, host or title; may be empty.
    QString judgedBy;
};
[[nodiscard]] Recognition recognise(const AXText &ax, const platform::AXUIElement &element);
/// Whether a host serves WhatsApp's web client.
[[nodiscard]] bool isChatHost(const QString &host);
/// Whether an element belongs to WhatsApp: its desktop program, or its web client in a browser.
[[nodiscard]] bool isChatApp(const AXText &ax, const platform::AXUIElement &element);
/// The web page that an element is in, or the element itself if it is one.
[[nodiscard]] std::optional<platform::AXUIElement> webArea(const platform::AXUIElement &element);
/// The window that an element is in.
[[nodiscard]] std::optional<platform::AXUIElement> containingWindow(const platform::AXUIElement &element);

/// Whether a trimmed text is part of the interface (a time, a counter, a presence) rather than a message.
[[nodiscard]] bool isNoise(const QString &text);

/// The horizontal extent of the conversation, in accessibility coordinates. The default excludes nothing.
struct Column {
    double left = std::numeric_limits<double>::lowest();
    double right = std::numeric_limits<double>::max();
};
/// The column around a message box, a little wider than the box.
[[nodiscard]] Column columnAround(const std::optional<platform::Rect> &field);
/// The messages among the elements of a tree, as marked lines in the order of the tree; 400 at most.
[[nodiscard]] QStringList messageLines(const std::vector<platform::AXSubtreeNode> &nodes, const Column &column);
/// The last lines, joined: at most 60 lines, and at most 8000 characters unless a single line is longer.
[[nodiscard]] QString transcript(QStringList lines);

/// The distinct lines of a conversation's text, without empty ones.
[[nodiscard]] text::Set distinctLines(const QString &conversation);
/// The fraction (0 to 1) of the lines known before that are still there; 0 if none were known.
[[nodiscard]] double overlap(const text::Set &now, const text::Set &before);

} // namespace quillory::ChatContext
