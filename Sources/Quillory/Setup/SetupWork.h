// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Settings/ApiKey.h"
#include "Quillory/Setup/Diagnosis.h"

namespace quillory {

/// What setting up does, whether a window or a terminal asks for it. Runs on the installed platform. Every operation
/// may take some seconds, or wait for the user, and gives whatever it has once the token asks to stop; one at a time,
/// never on the main thread of a program with windows.
class SetupWork {
  public:
    SetupWork(platform::DesktopExamination &examination, platform::DesktopRepair &repair, platform::KeyStorage &keys)
        : m_examination(examination), m_repair(repair), m_keys(keys) {}

    [[nodiscard]] std::vector<Finding> look(const std::stop_token &stop) const;
    /// Does what was offered for a finding. Returns the outcome as a sentence.
    [[nodiscard]] QString repair(const Finding &finding, const std::stop_token &stop) const;

    /// Takes a key as the user typed it.
    [[nodiscard]] SavedKey saveKey(const QString &typed, const std::stop_token &stop) const {
        return quillory::saveKey(m_keys, typed, stop);
    }

  private:
    platform::DesktopExamination &m_examination;
    platform::DesktopRepair &m_repair;
    platform::KeyStorage &m_keys;
};

} // namespace quillory
