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
    /// A change waits until it is saved, and says whether it was.
    atOnce,
    /// Nobody waits: a thread of the store's own saves, at the latest when the store is destroyed. A failure is
    /// reported
    /// on standard error, and by isFailingToSave().
    inBackground,
};

/// The content of a settings file, kept up to date with what other processes write. Changes apply in memory at once;
/// those that can't be saved are tried again later. Any thread.
class StoredSettings {
  public:
    /// Reads the file at once.
    StoredSettings(const QString &folder, Saving saving);

    /// The value of a key as any process wrote it last; absent if there is none.
    [[nodiscard]] std::optional<DefaultsValue> value(const QString &key);
    /// Sets a value (absent: removes the key); false when it is known not to have been saved.
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
    // Not under the mutex: these wait for the disk and for other writers.
    bool save();
    bool trySave();
    bool moveAside(const SettingsFile::Content &content, const SettingsFile::Lock &fileLock);
    void saveInBackground(const std::stop_token &stop);

    const SettingsFile m_file;
    const Saving m_saving;

    std::mutex m_mutex;
    settingsDocument::Values m_onDisk;
    settingsDocument::Changes m_unsaved;
    /// For keys that were changed while the file could not be read: the value that each was thought to have.
    settingsDocument::Changes m_basis;
    /// Of the content in m_onDisk.
    std::size_t m_hash = 0;
    std::optional<FileStamp> m_stamp;
    /// Whether later content may have the same stamp.
    bool m_stampIsFresh = false;
    bool m_hadContent = false;
    /// Whether the file has to be moved out of the way.
    bool m_isBroken = false;
    /// Whether there is a file that could not be read, so that m_onDisk is out of date or empty.
    bool m_isUncertain = false;

    std::atomic<bool> m_isFailing = false;
    /// One save at a time. Locked before m_mutex.
    std::mutex m_saveMutex;
    /// Whether a broken file had to be left in place, and which one was reported last.
    bool m_hasComplained = false;
    std::optional<FileStamp> m_complainedOf;

    std::condition_variable_any m_work;
    /// Last member, so that its final save finds the others alive.
    std::jthread m_saver;
};

} // namespace platform::desktop
