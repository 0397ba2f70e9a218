// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Folders.h"
#include "Platform/UserDefaults.h"

#include <memory>
#include <mutex>

namespace platform::desktop {

enum class Saving {
    /// A change waits until it is saved, and says whether it was.
    atOnce,
    /// Nobody waits: a thread of the store's own saves, at the latest when the store is destroyed. A failure is
    /// reported on standard error, and by isFailingToSave().
    inBackground,
};

/// Settings in a file of the program's own, "settings.json". Any number of processes may read and write it at once: a
/// write changes its own key on top of what is on disk at that moment, and a read sees what others have written, since
/// it compares the file's stamp first (2 microseconds). What cannot be saved is kept in memory and saved with the next
/// write that succeeds. A file that is not a settings document is renamed, with a line on standard error, and never
/// overwritten. The running program saves in the background, so that neither a read nor a write waits; a command, whose
/// exit status says whether a value was saved, saves at once.
class FileUserDefaults : public UserDefaults {
  public:
    /// Reads the file in this folder at once; the folder is made with the first write.
    explicit FileUserDefaults(const QString &folder = folders::configuration(), Saving saving = Saving::atOnce);
    ~FileUserDefaults() override;

    void registerDefaults(const std::map<QString, DefaultsValue> &defaults) override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] bool boolean(const QString &key) const override;
    [[nodiscard]] qint64 integer(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;
    bool set(const QString &key, const DefaultsValue &value) override;
    bool remove(const QString &key) override;
    [[nodiscard]] bool isFailingToSave() const override;

  private:
    class Stored;
    template <typename T> std::optional<T> value(const QString &key) const;

    std::unique_ptr<Stored> m_stored;
    mutable std::mutex m_mutex;
    std::map<QString, DefaultsValue> m_registered;
};

} // namespace platform::desktop
