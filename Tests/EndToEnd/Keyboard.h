// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include <QPoint>
#include <QString>

/// The user's hands: keys and clicks that come from the X server like real ones, and the clipboard.
namespace quillory::test::keyboard {

void type(const QString &text);
/// A key with its modifiers, as xdotool names it ("Tab", "ctrl+l").
void tap(const char *key);
void click(QPoint place);
void setLayout(const char *layout);

/// Puts content on the clipboard as another program would, which goes on owning it.
void copy(const QByteArray &content, const char *type);
/// What the clipboard offers as that type; empty when it does not.
[[nodiscard]] QByteArray clipboard(const char *type);

} // namespace quillory::test::keyboard
