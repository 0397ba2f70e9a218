// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Platform.h"

#include <QtGlobal>

#include <atomic>

namespace platform {

namespace {
const Platform *installed = nullptr;
std::atomic<std::uint64_t> installations = 0;
} // namespace

const Platform &current() {
    if (installed == nullptr) {
        qFatal("no platform services are installed");
    }
    return *installed;
}

std::uint64_t generation() {
    return installations;
}

Installation::Installation(const Platform &platform) {
    ++installations;
    installed = &platform;
}

Installation::~Installation() {
    installed = nullptr;
}

} // namespace platform
