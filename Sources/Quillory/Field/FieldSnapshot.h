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

/// How an element looks now, or absent when it reports no frame. Main thread only.
[[nodiscard]] std::optional<FieldSnapshot> snapshot(const platform::AXUIElement &element);

/// Whether a text field is a known one under a new element, which applications make when they redraw: of the same
/// process, with the same text, its corner less than 80 points away in each direction.
[[nodiscard]] bool isRecreated(const FieldSnapshot &known, const FieldSnapshot &candidate);

} // namespace quillory
