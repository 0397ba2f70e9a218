// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Roles.h"

#include "Platform/Accessibility.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace platform::desktop::atspi {

using namespace Qt::StringLiterals;

namespace {

// The names that depend on nothing but the role, and the numbers of the roles that have them.
constexpr struct {
    QLatin1StringView name;
    std::initializer_list<std::uint32_t> roles;
} table[]{
    {"AXApplication"_L1, {75}},
    {"AXButton"_L1, {43, 62}}, // push button, toggle button
    {"AXCell"_L1, {10, 56}},   // column header, table cell
    {"AXCheckBox"_L1, {7}},
    {"AXHeading"_L1, {83}},
    {"AXImage"_L1, {26, 27}}, // icon, image
    {"AXLink"_L1, {88}},
    {"AXList"_L1, {31, 98}}, // list, list box
    {"AXMenu"_L1, {33, 41}}, // menu, pop-up menu
    {"AXMenuBar"_L1, {34}},
    {"AXMenuButton"_L1, {129}},
    {"AXMenuItem"_L1, {8, 35, 45}}, // plain ones between those with a check mark or a radio button
    {"AXOutline"_L1, {65}},         // tree
    {"AXProgressIndicator"_L1, {42}},
    {"AXRadioButton"_L1, {37, 44}}, // page tab, radio button
    {"AXRow"_L1, {90, 91}},         // table row, tree item
    {"AXScrollArea"_L1, {49}},
    {"AXScrollBar"_L1, {48}},
    {"AXSlider"_L1, {51}},
    {"AXSplitGroup"_L1, {53}},
    {"AXSplitter"_L1, {50}},
    {"AXTabGroup"_L1, {38}},
    {"AXTable"_L1, {55, 66}}, // table, tree table
    {"AXToolbar"_L1, {63}},
    {"AXUnknown"_L1, {67}},
    {axRole::secureTextField, {40}},
    {axRole::webArea, {95}},
    {axRole::window, {16, 19, 22, 23, 69}}, // dialogs, frame, window
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
    const auto number = static_cast<std::uint32_t>(kind.role);
    for (const auto &[name, roles] : table) {
        if (std::ranges::find(roles, number) != roles.end()) {
            return name;
        }
    }
    return isEditableBox(kind) ? textFieldName(kind) : QStringLiteral("AXGroup");
}

bool isBlock(Role role) {
    // Images and buttons stand in a line of text, too.
    constexpr std::array inlineRoles{Role::label,
                                     Role::link,
                                     Role::staticText,
                                     Role::subscript,
                                     Role::text,
                                     Role::superscript,
                                     Role::contentDeletion,
                                     Role::contentInsertion,
                                     Role::mark,
                                     Role::suggestion,
                                     Role::icon,
                                     Role::image,
                                     Role::pushButton,
                                     Role::levelBar};
    return std::ranges::find(inlineRoles, role) == inlineRoles.end();
}

} // namespace platform::desktop::atspi
