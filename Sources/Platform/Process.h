// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace platform {

/// The running program: its bundle's information, its environment, its folders. Safe to use from any thread.
class Process {
  public:
    virtual ~Process() = default;
    /// A string of the information file of the bundle; absent when the key is missing or not a string.
    [[nodiscard]] virtual std::optional<QString> infoDictionaryString(const QString &key) const = 0;
    /// An environment variable; absent when it is not set.
    [[nodiscard]] virtual std::optional<QString> environment(const QString &name) const = 0;
    /// The folder under which the program keeps its own files ("Library/Logs/..."), without a trailing slash.
    [[nodiscard]] virtual QString homeDirectory() const = 0;
    /// This program's own process identifier.
    [[nodiscard]] virtual qint32 identifier() const = 0;
};

} // namespace platform
