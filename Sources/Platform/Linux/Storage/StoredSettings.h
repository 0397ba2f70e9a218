// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/Linux/Storage/SettingsDocument.h"
#include "Platform/Linux/Storage/SettingsFile.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace platform::desktop {

enum class Saving {
    /// Whoever changes a setting waits, and hears whether it was saved.
    atOnce,
    /// Nobody waits: a thread of the store's own saves, at the latest when the store is destroyed. A failure is said on
    /// standard error, and shows in what is asked later.
    inBackground,
};

/// The content of a settings file, kept up to date with what other processes write. Changes hold in memory at once;
/// those that can't be saved are tried again later. Any thread.
class StoredSettings {
  public:
    /// Reads the file at once.
    StoredSettings(const QString &folder, Saving saving);

    /// The value of a key as it was written last, by any process; absent where there is none.
    [[nodiscard]] std::optional<DefaultsValue> value(const QString &key);
    /// Takes a change (absent: the key is removed); false when it is known not to have been saved.
    bool change(const QString &key, const std::optional<DefaultsValue> &value);
    /// Whether the last save failed, and there is still something to save.
    [[nodiscard]] bool isFailingToSave() const { return m_isFailing; }

  private:
    // Under the mutex; reading takes microseconds.
    void load();
    void adopt(settingsDocument::Values values, const SettingsFile::Content &content);
    void remember(const std::optional<FileStamp> &stamp);
    void forget(const std::optional<FileStamp> &stamp);
    void holdOn(const std::optional<FileStamp> &stamp);
    [[nodiscard]] bool mayBecomeWhole(const SettingsFile::Content &content) const;
    // Without it: these wait for the disk and for other writers.
    bool save();
    bool trySave();
    bool moveAside(const SettingsFile::Content &content, const SettingsFile::Lock &fileLock);
    void saveInBackground(const std::stop_token &stop);

    const SettingsFile m_file;
    const Saving m_saving;

    std::mutex m_mutex;
    settingsDocument::Values m_onDisk;
    settingsDocument::Changes m_unsaved;
    /// For what was changed while the file could not be read: what it was taken to hold.
    settingsDocument::Changes m_basis;
    /// Of the content in m_onDisk.
    std::size_t m_hash = 0;
    std::optional<FileStamp> m_stamp;
    /// Whether m_stamp may also be that of a later content.
    bool m_stampIsFresh = false;
    bool m_hadContent = false;
    /// Whether the file has to be got out of the way.
    bool m_isBroken = false;
    /// Whether m_onDisk is only what was last known, or nothing, while there is a file.
    bool m_isUncertain = false;

    std::atomic<bool> m_isFailing = false;
    /// One save at a time. Locked before m_mutex.
    std::mutex m_saveMutex;
    /// Whether the file was last found to be broken and had to be left, and which one that was.
    bool m_hasComplained = false;
    std::optional<FileStamp> m_complainedOf;

    std::condition_variable_any m_work;
    /// Last, so that its last save finds everything else alive.
    std::jthread m_saver;
};

} // namespace platform::desktop
