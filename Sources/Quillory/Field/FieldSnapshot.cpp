// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/FieldSnapshot.h"

#include "Quillory/Field/AXText.h"
#include "Quillory/Text.h"

#include <cmath>

namespace quillory {

namespace {
constexpr double reach = 80;
}

std::optional<FieldSnapshot> snapshot(const platform::AXUIElement &element) {
    const auto frame = AXText::frame(element);
    if (!frame) {
        return std::nullopt;
    }
    const auto text = AXText::attribute<QString>(element, platform::AXAttribute::value);
    return FieldSnapshot{element.pid(), text.value_or(QString()), *frame};
}

bool isRecreated(const FieldSnapshot &known, const FieldSnapshot &candidate) {
    return candidate.pid == known.pid && std::abs(candidate.frame.x - known.frame.x) < reach &&
           std::abs(candidate.frame.y - known.frame.y) < reach && text::equal(candidate.text, known.text);
}

} // namespace quillory
