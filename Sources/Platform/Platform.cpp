// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Platform.h"

#include <QtGlobal>

namespace platform {

namespace {
const Platform *installed = nullptr;
}

const Platform &current() {
    if (installed == nullptr) {
        qFatal("no platform services are installed");
    }
    return *installed;
}

Installation::Installation(const Platform &platform) {
    installed = &platform;
}

Installation::~Installation() {
    installed = nullptr;
}

} // namespace platform
