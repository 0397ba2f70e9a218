// SPDX-FileCopyrightText: 2026 The Quillory developers
#include <QGuiApplication>
#include <QScreen>

#include <gmock/gmock.h>

namespace {
TEST(RealDesktop, GivesEachTestADisplayAndABusOfItsOwn) {
    EXPECT_EQ(QGuiApplication::primaryScreen()->size(), QSize(1280, 900));
    EXPECT_TRUE(qgetenv("DBUS_SESSION_BUS_ADDRESS").startsWith("unix:"));
}
} // namespace
