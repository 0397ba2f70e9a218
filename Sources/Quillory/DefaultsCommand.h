// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Quillory/CommandLine.h"

namespace quillory {

/// Shows or changes settings: "read [KEY]", "write KEY VALUE" or "delete KEY". Only the settings that the program has,
/// with values of their types. The API key comes from standard input alone and is never shown. Gives the exit status.
[[nodiscard]] int runDefaultsCommand(const QStringList &arguments, platform::UserDefaults &store,
                                     const CommandStreams &streams);

/// One line for each setting: its key, what it takes, what it does.
[[nodiscard]] QString describeSettings();

} // namespace quillory
