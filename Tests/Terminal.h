// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Commands/CommandLine.h"
#include "SimulatedDesktop/SimulatedDesktop.h"

#include <gmock/gmock.h>

#include <sstream>

namespace quillory::test {

/// Runs commands on a simulated desktop.
struct Terminal {
    explicit Terminal(SimulatedDesktop &desktop) {
        services.accessModel = [&desktop] {
            return std::shared_ptr<ModelAccess>(std::shared_ptr<void>(), &desktop.modelAccess);
        };
    }
    /// The exit status; what was printed is in output and errors.
    std::optional<int> run(const QStringList &arguments, const std::string &typed = {}) {
        std::istringstream input(typed);
        std::ostringstream printed;
        std::ostringstream complained;
        const auto status = runCommandLine(arguments, services, {input, printed, complained, showsGrowingText});
        output = printed.str();
        errors = complained.str();
        return status;
    }

    CommandServices services;
    bool showsGrowingText = false;
    std::string output;
    std::string errors;
};

} // namespace quillory::test
