// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdio>

namespace platform::desktop {

/// Writes a line with the program's name before it to standard error. Any thread.
inline void sayOnStandardError(const QString &sentence) {
    const QByteArray line = (QStringLiteral("quillory: ") + sentence + u'\n').toUtf8();
    std::fputs(line.constData(), stderr);
}

} // namespace platform::desktop
