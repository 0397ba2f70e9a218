// SPDX-FileCopyrightText: 2026 The Quillory developers
#pragma once

#include "Platform/Linux/Folders.h"
#include "Platform/Linux/Storage/SettingsDocument.h"
#include "Platform/Linux/Storage/SettingsFile.h"

#include <chrono>
#include <mutex>

namespace platform::desktop {

/// Settings in a file of the program's own, "settings.json". Any number of processes may read and write it at once: a
/// write changes its own key on top of what is on disk at that moment, and a read sees what others wrote, since it
/// looks at the file's stamp first (2 microseconds). What cannot be saved holds in memory and is saved with the
/// next write that succeeds. A file that is no settings document is renamed, with a line on standard error, and never
/// overwritten.
class FileUserDefaults final : public UserDefaults {
  public:
    /// Reads the file in this folder at once; the folder is made with the first write.
    explicit FileUserDefaults(const QString &folder = folders::configuration());

    void registerDefaults(const std::map<QString, DefaultsValue> &defaults) override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] bool boolean(const QString &key) const override;
    [[nodiscard]] qint64 integer(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;
    bool set(const QString &key, const DefaultsValue &value) override;
    bool remove(const QString &key) override;

  private:
    /// What is known of the file. Everything in it is used under the mutex.
    class Cache {
      public:
        explicit Cache(const QString &folder);
        /// The stored value; absent where there is none. A value that is not of the wanted type is one.
        [[nodiscard]] const DefaultsValue *find(const QString &key) const;
        /// Catches up with what others wrote.
        void refresh();
        /// Takes a change and saves all that are unsaved, waiting so long for another writer.
        bool change(const QString &key, const std::optional<DefaultsValue> &value);

      private:
        bool save(std::chrono::milliseconds longestWait);
        void load();
        void adopt(settingsDocument::Values values, const std::optional<FileStamp> &stamp);
        bool keepAside(const SettingsFile::Lock &lock);
        void complain(const std::optional<FileStamp> &stamp, const std::optional<QString> &newPath);
        [[nodiscard]] bool mayBecomeWhole(const SettingsFile::Content &content) const;

        SettingsFile m_file;
        settingsDocument::Values m_onDisk;
        settingsDocument::Changes m_unsaved;
        std::chrono::steady_clock::time_point m_nextTry;
        /// Of the content in m_onDisk.
        std::optional<FileStamp> m_stamp;
        /// Whether m_stamp may also be that of a later content.
        bool m_stampIsFresh = false;
        bool m_hadContent = false;
        bool m_hasComplained = false;
    };

    template <typename T> std::optional<T> value(const QString &key) const;

    mutable std::mutex m_mutex;
    mutable Cache m_cache;
    settingsDocument::Values m_registered;
};

} // namespace platform::desktop
