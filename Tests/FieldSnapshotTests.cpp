// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Field/FieldSnapshot.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillory {

TEST(FieldSnapshot, RecognisesARecreatedField) {
    const FieldSnapshot known{7, u"draft"_s, {100, 500, 400, 40}};
    EXPECT_TRUE(isRecreated(known, {7, known.text, {179.9, 420.1, 10, 10}}));
    EXPECT_FALSE(isRecreated(known, {7, known.text, {180, 500, 400, 40}}));
    EXPECT_FALSE(isRecreated(known, {8, known.text, known.frame}));
    EXPECT_FALSE(isRecreated(known, {7, u"drafts"_s, known.frame}));
}

} // namespace quillory
