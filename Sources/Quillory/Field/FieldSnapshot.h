// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Accessibility.h"

#include <QString>

#include <optional>

namespace quillory {

/// What a text field looked like when it was last seen. The frame is in accessibility coordinates.
struct FieldSnapshot {
    qint32 pid = 0;
    QString text;
    platform::Rect frame;
};

/// How an element looks now; absent if it reports no frame. Main thread only.
[[nodiscard]] std::optional<FieldSnapshot> snapshot(const platform::AXUIElement &element);

/// Whether a field is a known one under a new element, since applications make new elements when they redraw: it has
/// the same process and text, and its corner is less than 80 points away in each direction.
[[nodiscard]] bool isRecreated(const FieldSnapshot &known, const FieldSnapshot &candidate);

} // namespace quillory
