// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Geometry.h"

#include <QString>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace platform {

class AXUIElement;

/// A range of text in UTF-16 code units.
struct AXRange {
    qsizetype location = 0;
    qsizetype length = 0;
    friend bool operator==(const AXRange &, const AXRange &) = default;
};

/// The value of an attribute: a string, an element, an address, a number, a list of elements, or a geometric value.
using AXValue = std::variant<QString, AXUIElement, QUrl, double, std::vector<AXUIElement>, Point, Size, AXRange>;

/// The attributes that this program reads or writes.
enum class AXAttribute {
    children,
    focusedUIElement,
    focusedWindow,
    numberOfCharacters,
    parent,
    placeholderValue,
    position,
    role,
    selectedTextRange,
    size,
    title,
    url,
    value,
    window,
};

/// The role names that this program tells apart; other roles have names of the same style.
namespace axRole {
inline constexpr QLatin1StringView comboBox{"AXComboBox"};
inline constexpr QLatin1StringView searchField{"AXSearchField"};
inline constexpr QLatin1StringView secureTextField{"AXSecureTextField"};
inline constexpr QLatin1StringView staticText{"AXStaticText"};
inline constexpr QLatin1StringView textArea{"AXTextArea"};
inline constexpr QLatin1StringView textField{"AXTextField"};
inline constexpr QLatin1StringView webArea{"AXWebArea"};
inline constexpr QLatin1StringView window{"AXWindow"};
} // namespace axRole

/// Bounds of a bulk read. The root is at depth 0 and counts as one node.
struct AXSubtreeLimits {
    int maxDepth = 0;
    int maxNodes = 0;
    friend bool operator==(const AXSubtreeLimits &, const AXSubtreeLimits &) = default;
};

/// How old the outcome of a bulk read may be. Whatever decides where words are written asks for now(); a caller that
/// gets no answer may ask again with the same value, and then gets what was read since it was made.
struct AXFreshness {
    /// Absent: a copy of a moment ago will do, which is usually kept up to date.
    std::optional<std::chrono::steady_clock::time_point> notBefore;

    /// Read after this moment, which takes longer and may fail.
    static AXFreshness now() { return {std::chrono::steady_clock::now()}; }
};

/// One element of a bulk read. The value and the frame (accessibility coordinates) are read for static texts alone, the
/// frame for those that are not blank.
struct AXSubtreeNode {
    int depth = 0;
    QString role;
    std::optional<QString> value;
    std::optional<Rect> frame;
};

/// The desktop's side of an element handle. Every operation is called on the main thread, may ask another process,
/// waits for a bounded time only, and answers "absent" or false for whatever goes wrong: a hung or vanished
/// application, an attribute that is not supported, a value that cannot be read.
class AXElementBackend {
  public:
    virtual ~AXElementBackend() = default;
    /// The value of an attribute.
    [[nodiscard]] virtual std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const = 0;
    /// Whether the attribute can be written.
    [[nodiscard]] virtual bool isAttributeSettable(AXAttribute /*attribute*/) const { return false; }
    /// Writes an attribute; false when the application refused or did not answer. Reads that follow see the outcome,
    /// not a remembered value.
    virtual bool setAttributeValue(AXAttribute /*attribute*/, const AXValue & /*value*/) const { return false; }
    /// The identifier of the process that shows the element; 0 when unknown. Asks nobody.
    [[nodiscard]] virtual qint32 pid() const = 0;
    /// Whether both handles stand for one element. Asks nobody.
    [[nodiscard]] virtual bool isEqual(const AXElementBackend &other) const = 0;
    /// The element and what lies below it, each element before its children and children in their order, cut off at
    /// the limits: exactly the first nodes that a walk in that order would meet. Empty when it cannot be read in time;
    /// a recent one may be there a moment later.
    [[nodiscard]] virtual std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits /*limits*/,
                                                                 AXFreshness /*freshness*/) const {
        return {};
    }
    /// Announces a copySubtree() of a recent outcome. If the subtree is known to have changed, a copy older than the
    /// freshness given will not do for it. Never waits.
    virtual void prepareSubtree(AXSubtreeLimits /*limits*/, AXFreshness /*freshness*/) const {}
};

/// A handle on one element (a window, a field, a text, a whole application) of some application's accessibility tree.
/// Cheap to copy. The element may vanish at any time; every question about it then yields "absent".
class AXUIElement {
  public:
    explicit AXUIElement(std::shared_ptr<const AXElementBackend> backend) : m_backend(std::move(backend)) {}

    [[nodiscard]] std::optional<AXValue> copyAttributeValue(AXAttribute attribute) const;
    [[nodiscard]] bool isAttributeSettable(AXAttribute attribute) const {
        return m_backend->isAttributeSettable(attribute);
    }
    bool setAttributeValue(AXAttribute attribute, const AXValue &value) const;
    [[nodiscard]] qint32 pid() const { return m_backend->pid(); }
    [[nodiscard]] std::vector<AXSubtreeNode> copySubtree(AXSubtreeLimits limits, AXFreshness freshness = {}) const {
        return m_backend->copySubtree(limits, freshness);
    }
    void prepareSubtree(AXSubtreeLimits limits, AXFreshness freshness) const {
        m_backend->prepareSubtree(limits, freshness);
    }

    friend bool operator==(const AXUIElement &a, const AXUIElement &b) { return a.m_backend->isEqual(*b.m_backend); }

  private:
    std::shared_ptr<const AXElementBackend> m_backend;
};

inline std::optional<AXValue> AXUIElement::copyAttributeValue(AXAttribute attribute) const {
    return m_backend->copyAttributeValue(attribute);
}

inline bool AXUIElement::setAttributeValue(AXAttribute attribute, const AXValue &value) const {
    return m_backend->setAttributeValue(attribute, value);
}

/// The entry to other applications' accessibility trees. Main thread only.
class Accessibility {
  public:
    virtual ~Accessibility() = default;
    /// Whether this process may read other applications: the accessibility service answers and is switched on. Never
    /// waits: answers what is known, and finds out in the background.
    [[nodiscard]] virtual bool isProcessTrusted() = 0;
    /// The same, and asks the user to allow it when it is not so. Returns at once, without waiting for the user.
    virtual bool isProcessTrustedWithPrompt() = 0;
    /// Shows where to allow it, because the user asked: the desktop's accessibility settings or what stands in for
    /// them. Returns at once.
    virtual void showSettings() = 0;
    /// The element through which the focused element of the whole desktop is read.
    [[nodiscard]] virtual AXUIElement createSystemWide() = 0;
    /// The element of a whole application; it answers "absent" to everything when there is no such process.
    [[nodiscard]] virtual AXUIElement createApplication(qint32 pid) = 0;
};

} // namespace platform
