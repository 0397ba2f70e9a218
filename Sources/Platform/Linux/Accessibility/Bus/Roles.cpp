// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Roles.h"

#include "Platform/Accessibility.h"

#include <algorithm>
#include <array>

namespace platform::desktop::atspi {

namespace {

struct Entry {
    std::uint32_t role;
    QLatin1StringView name;
};

// Roles whose name depends on nothing but the role number, in the order of the numbers.
constexpr std::array table{
    Entry{2, QLatin1StringView("AXGroup")},        // alert
    Entry{7, QLatin1StringView("AXCheckBox")},     // check box
    Entry{8, QLatin1StringView("AXMenuItem")},     // check menu item
    Entry{10, QLatin1StringView("AXCell")},        // column header
    Entry{16, axRole::window},                     // dialog
    Entry{19, axRole::window},                     // file chooser
    Entry{22, axRole::window},                     // font chooser
    Entry{23, axRole::window},                     // frame
    Entry{26, QLatin1StringView("AXImage")},       // icon
    Entry{27, QLatin1StringView("AXImage")},       // image
    Entry{31, QLatin1StringView("AXList")},        // list
    Entry{33, QLatin1StringView("AXMenu")},        // menu
    Entry{34, QLatin1StringView("AXMenuBar")},     // menu bar
    Entry{35, QLatin1StringView("AXMenuItem")},    // menu item
    Entry{37, QLatin1StringView("AXRadioButton")}, // page tab
    Entry{38, QLatin1StringView("AXTabGroup")},    // page tab list
    Entry{40, axRole::secureTextField},            // password text
    Entry{41, QLatin1StringView("AXMenu")},        // pop-up menu
    Entry{42, QLatin1StringView("AXProgressIndicator")},
    Entry{43, QLatin1StringView("AXButton")},      // push button
    Entry{44, QLatin1StringView("AXRadioButton")}, // radio button
    Entry{45, QLatin1StringView("AXMenuItem")},    // radio menu item
    Entry{48, QLatin1StringView("AXScrollBar")},   // scroll bar
    Entry{49, QLatin1StringView("AXScrollArea")},  // scroll pane
    Entry{50, QLatin1StringView("AXSplitter")},    // separator
    Entry{51, QLatin1StringView("AXSlider")},      // slider
    Entry{53, QLatin1StringView("AXSplitGroup")},  // split pane
    Entry{55, QLatin1StringView("AXTable")},       // table
    Entry{56, QLatin1StringView("AXCell")},        // table cell
    Entry{62, QLatin1StringView("AXButton")},      // toggle button
    Entry{63, QLatin1StringView("AXToolbar")},     // tool bar
    Entry{65, QLatin1StringView("AXOutline")},     // tree
    Entry{66, QLatin1StringView("AXTable")},       // tree table
    Entry{67, QLatin1StringView("AXUnknown")},     // unknown
    Entry{69, axRole::window},                     // window
    Entry{75, QLatin1StringView("AXApplication")}, // application
    Entry{83, QLatin1StringView("AXHeading")},     // heading
    Entry{88, QLatin1StringView("AXLink")},        // link
    Entry{90, QLatin1StringView("AXRow")},         // table row
    Entry{91, QLatin1StringView("AXRow")},         // tree item
    Entry{95, axRole::webArea},                    // document web
    Entry{98, QLatin1StringView("AXList")},        // list box
    Entry{129, QLatin1StringView("AXMenuButton")}, // push button menu
};

bool hasAttribute(const Kind &kind, std::string_view name, std::string_view value) {
    const auto found = kind.attributes.find(name);
    return found != kind.attributes.end() && found->second == value;
}

bool isSearch(const Kind &kind) {
    return hasAttribute(kind, "xml-roles", "searchbox") || hasAttribute(kind, "text-input-type", "search");
}

QString textFieldName(const Kind &kind) {
    if (isSearch(kind)) {
        return axRole::searchField;
    }
    return kind.states.has(State::multiLine) ? axRole::textArea : axRole::textField;
}

bool isEditableBox(const Kind &kind) {
    // What lies inside an editor is editable too, but only the editor itself takes the focus.
    return kind.states.has(State::editable) && kind.states.has(State::focusable);
}

} // namespace

QString axRoleName(const Kind &kind) {
    switch (kind.role) {
    case Role::entry:
        return textFieldName(kind);
    case Role::text:
        // Toolkits use this role for fields and for texts that can only be read.
        return kind.states.has(State::editable) ? textFieldName(kind) : axRole::staticText;
    case Role::staticText:
    case Role::label:
        // Around other elements it only groups them; the words are theirs.
        return kind.hasChildren ? QStringLiteral("AXGroup") : QString(axRole::staticText);
    case Role::comboBox:
        return kind.states.has(State::editable) ? QString(axRole::comboBox) : QStringLiteral("AXPopUpButton");
    default:
        break;
    }
    const auto *found = std::lower_bound(table.begin(), table.end(), static_cast<std::uint32_t>(kind.role),
                                         [](const Entry &entry, std::uint32_t role) { return entry.role < role; });
    if (found != table.end() && found->role == static_cast<std::uint32_t>(kind.role)) {
        return found->name;
    }
    return isEditableBox(kind) ? textFieldName(kind) : QStringLiteral("AXGroup");
}

bool isBlock(Role role) {
    constexpr std::array inlineRoles{Role::label, Role::link,        Role::staticText,      Role::subscript,
                                     Role::text,  Role::superscript, Role::contentDeletion, Role::contentInsertion,
                                     Role::mark,  Role::suggestion};
    // Images and buttons stand in a line of text, too.
    constexpr std::array<std::uint32_t, 4> inlineNumbers{26, 27, 43, 103};
    return std::find(inlineRoles.begin(), inlineRoles.end(), role) == inlineRoles.end() &&
           std::find(inlineNumbers.begin(), inlineNumbers.end(), static_cast<std::uint32_t>(role)) ==
               inlineNumbers.end();
}

} // namespace platform::desktop::atspi
