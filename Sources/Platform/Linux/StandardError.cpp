// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/StandardError.h"

#include <cstdio>

namespace platform::desktop {

void sayOnStandardError(const QString &sentence) {
    const QByteArray line = (QStringLiteral("quillory: ") + sentence + u'\n').toUtf8();
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

} // namespace platform::desktop
