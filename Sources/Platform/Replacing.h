// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Platform.h"

#include <concepts>

namespace platform {

namespace replacing {

template <typename Service> Service &chosen(Service &present) {
    return present;
}

/// The first of the others that is such a service, else the present one.
template <typename Service, typename Other, typename... Others>
Service &chosen(Service &present, Other &other, Others &...others) {
    if constexpr (std::derived_from<Other, Service>) {
        return other;
    } else {
        return chosen<Service>(present, others...);
    }
}

} // namespace replacing

/// These services, but with others in the place of some: each takes the place of the kind of service that it is. All
/// of them outlive the result.
template <typename... Others> [[nodiscard]] Platform withReplaced(const Platform &services, Others &...others) {
    const auto chosen = [&](auto &present) -> auto & {
        return replacing::chosen(present, others...);
    };
    return {.accessibility = chosen(services.accessibility),
            .application = chosen(services.application),
            .codeSigning = chosen(services.codeSigning),
            .eventTaps = chosen(services.eventTaps),
            .fileSystem = chosen(services.fileSystem),
            .keyPoster = chosen(services.keyPoster),
            .mainQueue = chosen(services.mainQueue),
            .panelWindows = chosen(services.panelWindows),
            .pasteboard = chosen(services.pasteboard),
            .process = chosen(services.process),
            .screens = chosen(services.screens),
            .statusBar = chosen(services.statusBar),
            .systemTools = chosen(services.systemTools),
            .urlSession = chosen(services.urlSession),
            .userDefaults = chosen(services.userDefaults),
            .workspace = chosen(services.workspace)};
}

} // namespace platform
