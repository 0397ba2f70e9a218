// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace quillory {

/// Adds bytes to the end of a file, creating it when there is none; one write, so that lines of several threads or
/// processes never mix. Its folder must exist. False when the bytes are lost.
bool appendToFile(const QString &path, const QByteArray &bytes);

} // namespace quillory
