// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/KeyStorage.h"
#include "Quillory/Model/OpenRouterClient.h"

namespace quillory {

/// What commands and the set-up need to ask the model service, and to keep a new key for it. The services outlive this.
struct ModelAccess {
    ModelAccess(platform::UserDefaults &store, const platform::Process &ownProcess, platform::URLSession &network,
                platform::KeyStorage &keyStorage)
        : process(ownProcess), session(network), keys(keyStorage), settings(store, process),
          client(settings, process, session) {}

    const platform::Process &process;
    platform::URLSession &session;
    platform::KeyStorage &keys;
    AppSettings settings;
    OpenRouterClient client;
};

} // namespace quillory
