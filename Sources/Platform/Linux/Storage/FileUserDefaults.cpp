// SPDX-FileCopyrightText: 2026 The Quillory developers
#include "Platform/Linux/Storage/FileUserDefaults.h"

#include "Platform/Linux/StandardError.h"

#include <utility>

namespace platform::desktop {

namespace {
using Content = SettingsFile::Content;
using namespace std::chrono_literals;

/// File times move in steps of some milliseconds: two states within one step can look the same.
constexpr auto coarsestFileTime = 50ms;
/// An editor may write a file in several pieces; for so long a broken one may still become whole.
constexpr auto longestPartialWrite = 2s;
constexpr auto longestWaitOfAWrite = 200ms;
constexpr auto pauseBetweenTries = 5s;

std::chrono::nanoseconds age(const FileStamp &stamp) {
    return std::chrono::abs(std::chrono::system_clock::now().time_since_epoch() -
                            std::chrono::nanoseconds(stamp.modified));
}

/// The values of a file; none for a file that is not there, absent for one that can't be taken for settings.
std::optional<settingsDocument::Values> valuesOf(const Content &content) {
    switch (content.state) {
    case Content::State::absent:
        return settingsDocument::Values();
    case Content::State::readable:
        return settingsDocument::values(content.bytes);
    default:
        return std::nullopt;
    }
}
} // namespace

FileUserDefaults::Cache::Cache(const QString &folder) : m_file(folder) {
    load();
}

const DefaultsValue *FileUserDefaults::Cache::find(const QString &key) const {
    if (const auto unsaved = m_unsaved.find(key); unsaved != m_unsaved.end()) {
        return unsaved->second ? &*unsaved->second : nullptr;
    }
    const auto found = m_onDisk.find(key);
    return found == m_onDisk.end() ? nullptr : &found->second;
}

void FileUserDefaults::Cache::refresh() {
    if (m_stampIsFresh || m_file.stamp() != m_stamp) {
        load();
    }
    if (!m_unsaved.empty() && std::chrono::steady_clock::now() >= m_nextTry) {
        save(0ms);
    }
}

bool FileUserDefaults::Cache::change(const QString &key, const std::optional<DefaultsValue> &value) {
    m_unsaved.insert_or_assign(key, value);
    return save(longestWaitOfAWrite);
}

bool FileUserDefaults::Cache::save(std::chrono::milliseconds longestWait) {
    m_nextTry = std::chrono::steady_clock::now() + pauseBetweenTries;
    const SettingsFile::Lock lock(m_file, longestWait);
    if (!lock) {
        return false;
    }
    Content content = m_file.read();
    if (!valuesOf(content)) {
        if (mayBecomeWhole(content) || !keepAside(lock)) {
            return false;
        }
        content = {};
    }
    const QByteArray merged = settingsDocument::merged(content.bytes, m_unsaved);
    const std::optional<FileStamp> stamp = merged == content.bytes ? content.stamp : m_file.replace(merged, lock);
    if (!stamp) {
        return false;
    }
    m_unsaved.clear();
    adopt(settingsDocument::values(merged).value_or(settingsDocument::Values()), stamp);
    return true;
}

void FileUserDefaults::Cache::load() {
    const Content content = m_file.read();
    if (auto values = valuesOf(content)) {
        adopt(*std::move(values), content.stamp);
    } else if (mayBecomeWhole(content)) {
        m_stampIsFresh = true;
    } else {
        keepAside(SettingsFile::Lock(m_file, longestWaitOfAWrite));
    }
}

bool FileUserDefaults::Cache::mayBecomeWhole(const Content &content) const {
    return m_hadContent && content.stamp && age(*content.stamp) < longestPartialWrite;
}

void FileUserDefaults::Cache::adopt(settingsDocument::Values values, const std::optional<FileStamp> &stamp) {
    m_onDisk = std::move(values);
    m_stamp = stamp;
    m_stampIsFresh = stamp && age(*stamp) < coarsestFileTime;
    m_hadContent = stamp.has_value();
    m_hasComplained = false;
}

/// Gets a file out of the way that can't be taken for settings, and lets the defaults hold. False when it stays: it
/// must not be written to then.
bool FileUserDefaults::Cache::keepAside(const SettingsFile::Lock &lock) {
    const Content content = m_file.read();
    if (auto values = valuesOf(content)) { // another process was faster
        adopt(*std::move(values), content.stamp);
        return false;
    }
    const bool isMovable = lock && content.state != Content::State::unreadable;
    const std::optional<QString> newPath = isMovable ? m_file.moveAside(lock) : std::nullopt;
    complain(content.stamp, newPath);
    m_onDisk.clear();
    m_stamp = newPath ? std::nullopt : content.stamp;
    m_stampIsFresh = false;
    m_hadContent = false;
    return newPath.has_value();
}

void FileUserDefaults::Cache::complain(const std::optional<FileStamp> &stamp, const std::optional<QString> &newPath) {
    if (std::exchange(m_hasComplained, !newPath) && stamp == m_stamp) {
        return;
    }
    sayOnStandardError(QStringLiteral("the settings in %1 cannot be read, so the defaults apply; %2")
                           .arg(m_file.path(), newPath ? QStringLiteral("the file was kept as %1").arg(*newPath)
                                                       : QStringLiteral("the file was left as it is, and no setting "
                                                                        "can be saved")));
}

FileUserDefaults::FileUserDefaults(const QString &folder) : m_cache(folder) {}

template <typename T> std::optional<T> FileUserDefaults::value(const QString &key) const {
    const std::scoped_lock lock(m_mutex);
    m_cache.refresh();
    const auto registered = m_registered.find(key);
    for (const DefaultsValue *const value :
         {m_cache.find(key), registered == m_registered.end() ? nullptr : &registered->second}) {
        if (value != nullptr && std::holds_alternative<T>(*value)) {
            return std::get<T>(*value);
        }
    }
    return std::nullopt;
}

void FileUserDefaults::registerDefaults(const std::map<QString, DefaultsValue> &defaults) {
    const std::scoped_lock lock(m_mutex);
    for (const auto &[key, value] : defaults) {
        m_registered.insert_or_assign(key, value);
    }
}

std::optional<QString> FileUserDefaults::string(const QString &key) const {
    return value<QString>(key);
}

bool FileUserDefaults::boolean(const QString &key) const {
    return value<bool>(key).value_or(false);
}

qint64 FileUserDefaults::integer(const QString &key) const {
    return value<qint64>(key).value_or(0);
}

std::optional<QByteArray> FileUserDefaults::data(const QString &key) const {
    return value<QByteArray>(key);
}

bool FileUserDefaults::set(const QString &key, const DefaultsValue &value) {
    const std::scoped_lock lock(m_mutex);
    return m_cache.change(key, value);
}

bool FileUserDefaults::remove(const QString &key) {
    const std::scoped_lock lock(m_mutex);
    return m_cache.change(key, std::nullopt);
}

} // namespace platform::desktop
