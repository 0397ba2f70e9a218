// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Quillory/Model/ModelAccess.h"
#include "Quillory/Settings/ApiKey.h"
#include "Quillory/Setup/Diagnosis.h"

#include <memory>
#include <mutex>

namespace quillory {

/// What the doctor and the set-up do, whether a window or a terminal asks for it. What it works with outlives it. Every
/// operation may take some seconds or wait for the user, and returns what it has once asked to stop; never call one on
/// the main thread of a program with windows. Copies share what the last look found.
class SetupWork {
  public:
    SetupWork(platform::DesktopDoctor &doctor, const ModelAccess &access) : m_doctor(doctor), m_access(access) {}

    [[nodiscard]] const ModelAccess &access() const { return m_access; }

    /// Examines everything: the desktop, the key, and whether the model service can be reached, to which it sends one
    /// request without the key.
    [[nodiscard]] std::vector<Finding> look(const std::stop_token &stop) const;
    /// Examines the running programs alone, as long as no message box was seen: notices when one has been closed and
    /// opened again. Absent when nothing has changed since the last look.
    [[nodiscard]] std::optional<std::vector<Finding>> lookForChanges(const std::stop_token &stop) const;
    /// Does what was offered for a finding. Returns the outcome as a sentence.
    [[nodiscard]] QString repair(const Finding &finding, const std::stop_token &stop) const;

    /// Stores a key as the user typed it.
    [[nodiscard]] SavedKey saveKey(const QString &typed, const std::stop_token &stop) const {
        return quillory::saveKey(m_access.keys, typed, stop);
    }

  private:
    struct LastLook {
        std::mutex mutex;
        platform::DesktopFacts desktop;
        ProgramFacts program;
        std::vector<Finding> findings;
    };

    platform::DesktopDoctor &m_doctor;
    const ModelAccess &m_access;
    std::shared_ptr<LastLook> m_last = std::make_shared<LastLook>();
};

} // namespace quillory
