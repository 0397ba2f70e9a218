// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Quillory/AppendLine.h"

#include <QFile>

namespace quillory {

bool appendToFile(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
        return false;
    }
    return file.write(bytes) == bytes.size();
}

} // namespace quillory
