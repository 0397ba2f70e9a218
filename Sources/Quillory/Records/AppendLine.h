// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace quillory {

/// Appends bytes to a file in a single write, so that lines of several threads or processes never mix. Creates the file
/// if needed, but not its folder. False if the bytes were lost.
bool appendToFile(const QString &path, const QByteArray &bytes);

} // namespace quillory
