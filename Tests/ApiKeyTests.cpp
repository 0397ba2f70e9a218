// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Settings/ApiKey.h"

#include <gtest/gtest.h>

namespace quillory {
namespace {

TEST(ApiKey, IsCleanedOrRefused) {
    for (const char *typed : {"sk-or-1", "  sk-or-1\r\n", "sk-\nor-1", "sk-or\r\n -1\t", "\xC2\xA0sk-or-1"}) {
        EXPECT_EQ(enteredKey(QString::fromUtf8(typed)).key, QString::fromUtf8("sk-or-1")) << typed;
    }
    for (const QString &typed : {QString::fromUtf8(" \n"), QString::fromUtf8("sk or"), QString::fromUtf8("sk-\x01"),
                                 QString::fromUtf8("sk-ü"), QString(600, u'x')}) {
        EXPECT_TRUE(enteredKey(typed).key.isEmpty());
        EXPECT_TRUE(enteredKey(typed).refusal.endsWith(u'.'));
    }
}

} // namespace
} // namespace quillory
