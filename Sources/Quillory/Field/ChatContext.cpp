// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/ChatContext.h"

#include "Quillory/Field/KnownPrograms.h"

#include <QRegularExpression>

#include <algorithm>

namespace quillory::ChatContext {

using platform::AXAttribute;
using platform::AXUIElement;
namespace axRole = platform::axRole;

namespace {

constexpr platform::AXSubtreeLimits walkLimits{.maxDepth = 21, .maxNodes = 2500};
constexpr qsizetype shortestLine = 2;
constexpr int maxCollectedLines = 400;
constexpr qsizetype maxLines = 60;
constexpr qsizetype maxCharacters = 8000;
constexpr double columnWidening = 40;
// How much closer to one edge than to the other a message must be for its side to tell who sent it.
constexpr double sideMargin = 60;
constexpr int webAreaClimb = 30;
constexpr int windowClimb = 25;
constexpr QLatin1StringView webClientHost{"web.whatsapp.com"};
constexpr QLatin1StringView titleWord{"whatsapp"};

// The first element with this role among an element and its ancestors. looks: how many to look at.
std::optional<AXUIElement> nearest(const AXUIElement &element, QLatin1StringView role, int looks) {
    std::optional<AXUIElement> current = element;
    for (int look = 0; look < looks && current; ++look) {
        if (look > 0) {
            current = AXText::attribute<AXUIElement>(*current, AXAttribute::parent);
        }
        if (current && AXText::attribute<QString>(*current, AXAttribute::role) == role) {
            return current;
        }
    }
    return std::nullopt;
}

std::optional<QString> title(const std::optional<AXUIElement> &window) {
    return window ? AXText::attribute<QString>(*window, AXAttribute::title) : std::nullopt;
}

bool namesChat(const std::optional<QString> &windowTitle) {
    return windowTitle && windowTitle->contains(titleWord, Qt::CaseInsensitive);
}

Recognition recognisePage(const AXText &ax, const AXUIElement &element) {
    const auto page = webArea(element);
    const auto address = page ? AXText::attribute<QUrl>(*page, AXAttribute::url) : std::nullopt;
    if (address) {
        return {Recognition::Evidence::pageAddress, isChatHost(address->host()), address->host()};
    }
    auto shown = ax.focusedWindowTitle(element.pid());
    if (!namesChat(shown)) {
        shown = title(containingWindow(element));
    }
    return {Recognition::Evidence::windowTitle, namesChat(shown), shown.value_or(QString())};
}

QRegularExpression expression(const char *pattern) {
    // \d stands for the digits of every script.
    QRegularExpression result(QString::fromLatin1(pattern), QRegularExpression::UseUnicodePropertiesOption);
    result.optimize();
    return result;
}

QString mark(const platform::Rect &frame, const Column &column) {
    const double leftGap = frame.minX() - column.left;
    const double rightGap = column.right - frame.maxX();
    if (leftGap > rightGap + sideMargin) {
        return QStringLiteral("\u00AByou\u00BB ");
    }
    return rightGap > leftGap + sideMargin ? QStringLiteral("\u00ABcustomer\u00BB ") : QString();
}

std::optional<QString> messageLine(const platform::AXSubtreeNode &node, const Column &column) {
    if (node.role != axRole::staticText || !node.value || !node.frame) {
        return std::nullopt;
    }
    const double middle = node.frame->midX();
    if (middle < column.left || middle > column.right) {
        return std::nullopt;
    }
    const QString line = text::trimmed(*node.value);
    if (!text::hasAtLeast(line, shortestLine) || isNoise(line)) {
        return std::nullopt;
    }
    return mark(*node.frame, column) + line;
}

// The page in a browser, the whole window elsewhere.
std::optional<AXUIElement> conversationRoot(const AXUIElement &element) {
    auto page = webArea(element);
    return page ? page : containingWindow(element);
}

} // namespace

std::optional<Conversation> extract(const AXUIElement &element) {
    return look(element, {}).conversation;
}

Look look(const AXUIElement &element, platform::AXFreshness freshness) {
    const auto root = conversationRoot(element);
    if (!root) {
        return {};
    }
    const Column column = columnAround(AXText::frame(element));
    const auto nodes = root->copySubtree(walkLimits, freshness);
    QStringList lines = messageLines(nodes, column);
    if (lines.isEmpty()) {
        return {!nodes.empty(), std::nullopt};
    }
    const QString text = transcript(std::move(lines));
    return {true, Conversation{text, text::hash(text)}};
}

void prepare(const AXUIElement &element, platform::AXFreshness freshness) {
    if (const auto root = conversationRoot(element)) {
        root->prepareSubtree(walkLimits, freshness);
    }
}

Recognition recognise(const AXText &ax, const AXUIElement &element) {
    const QString identifier = ax.bundleIdentifier(element).value_or(QString());
    if (programKind(identifier) == ProgramKind::chat) {
        return {Recognition::Evidence::chatProgram, true, identifier};
    }
    return ax.isBrowserApp(element) ? recognisePage(ax, element)
                                    : Recognition{Recognition::Evidence::otherProgram, false, identifier};
}

bool isChatHost(const QString &host) {
    return host.contains(webClientHost);
}

bool isChatApp(const AXText &ax, const AXUIElement &element) {
    return recognise(ax, element).isChat;
}

std::optional<AXUIElement> webArea(const AXUIElement &element) {
    return nearest(element, axRole::webArea, webAreaClimb);
}

std::optional<AXUIElement> containingWindow(const AXUIElement &element) {
    if (auto window = AXText::attribute<AXUIElement>(element, AXAttribute::window)) {
        return window;
    }
    return nearest(element, axRole::window, windowClimb);
}

bool isNoise(const QString &text) {
    static const auto time = expression(R"(^\d{1,2}:\d{2}( ?(AM|PM|am|pm))?$)");
    static const auto number = expression(R"(^\d+$)");
    static const auto unread = expression(R"(^\d+ unread messages?$)");
    static const QStringList presences{QStringLiteral("online"), QStringLiteral("typing\u2026"),
                                       QStringLiteral("typing..."), QStringLiteral("recording audio\u2026"),
                                       QStringLiteral("click here for contact info")};
    if (time.match(text).hasMatch() || number.match(text).hasMatch()) {
        return true;
    }
    const QString lower = text.toLower();
    return presences.contains(lower) || unread.match(lower).hasMatch();
}

Column columnAround(const std::optional<platform::Rect> &field) {
    return field ? Column{field->minX() - columnWidening, field->maxX() + columnWidening} : Column{};
}

QStringList messageLines(const std::vector<platform::AXSubtreeNode> &nodes, const Column &column) {
    QStringList lines;
    for (const auto &node : nodes) {
        if (lines.size() == maxCollectedLines) {
            break;
        }
        if (auto line = messageLine(node, column)) {
            lines.append(*std::move(line));
        }
    }
    return lines;
}

QString transcript(QStringList lines) {
    lines = lines.mid(std::max<qsizetype>(0, lines.size() - maxLines));
    QString whole = lines.join(u'\n');
    if (whole.size() <= maxCharacters) {
        return whole; // there are never more characters than code units
    }
    // A line break is always a character of its own, so the lines' counts add up.
    QList<qsizetype> counts;
    for (const QString &line : std::as_const(lines)) {
        counts.append(text::characterCount(line));
    }
    qsizetype kept = 1;
    qsizetype total = counts.last();
    while (kept < lines.size() && total + 1 + counts[counts.size() - 1 - kept] <= maxCharacters) {
        total += 1 + counts[counts.size() - 1 - kept];
        ++kept;
    }
    return lines.mid(lines.size() - kept).join(u'\n');
}

text::Set distinctLines(const QString &conversation) {
    const QStringList lines = conversation.split(u'\n', Qt::SkipEmptyParts);
    return {lines.begin(), lines.end()};
}

double overlap(const text::Set &now, const text::Set &before) {
    if (before.empty()) {
        return 0;
    }
    const auto kept =
        std::count_if(before.begin(), before.end(), [&](const QString &line) { return now.contains(line); });
    return static_cast<double>(kept) / static_cast<double>(before.size());
}

} // namespace quillory::ChatContext
