// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Storage/FileUserDefaults.h"

#include "Platform/Linux/StandardError.h"
#include "Platform/Linux/Storage/SettingsDocument.h"
#include "Platform/Linux/Storage/SettingsFile.h"

#include <QHash>

#include <atomic>
#include <condition_variable>
#include <thread>
#include <utility>

namespace platform::desktop {

namespace {
using Content = SettingsFile::Content;
using namespace std::chrono_literals;

/// File times move in steps of some milliseconds: two states within one step can look the same.
constexpr auto coarsestFileTime = 50ms;
/// An editor may write a file in several pieces; a broken one may become whole within this time.
constexpr auto longestPartialWrite = 2s;
constexpr auto longestWaitOfAWrite = 200ms;
constexpr auto pauseBetweenTries = 5s;

std::chrono::nanoseconds age(const FileStamp &stamp) {
    return std::chrono::abs(std::chrono::system_clock::now().time_since_epoch() -
                            std::chrono::nanoseconds(stamp.modified));
}

/// The values of a file; none if there is no file, absent if it is not a settings document.
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

/// Saves changes on top of a file's content and returns the new content; absent on failure.
std::optional<Content> written(const SettingsFile &file, const Content &content,
                               const settingsDocument::Changes &changes, const SettingsFile::Lock &lock) {
    if (changes.empty()) {
        return content;
    }
    if (!lock) {
        return std::nullopt;
    }
    const QByteArray merged = settingsDocument::merged(content.bytes, changes);
    const std::optional<FileStamp> stamp = merged == content.bytes ? content.stamp : file.replace(merged, lock);
    return stamp ? std::optional(Content{Content::State::readable, merged, stamp}) : std::nullopt;
}

/// The changes, and as "<key>.replaced" the values that their author could not have known, since the file was
/// unreadable.
settingsDocument::Changes keepingReplaced(settingsDocument::Changes changes, const settingsDocument::Changes &basis,
                                          const Content &content) {
    const auto values = valuesOf(content).value_or(settingsDocument::Values());
    for (const auto &[key, known] : basis) {
        const auto found = values.find(key);
        const auto change = changes.find(key);
        const bool isWanted = change != changes.end() && change->second; // removing is not replacing
        if (found != values.end() && isWanted && known != found->second && change->second != found->second) {
            changes.insert_or_assign(key + QStringLiteral(".replaced"), found->second);
        }
    }
    return changes;
}
} // namespace

/// The content of a settings file, kept up to date with what other processes write. Changes apply in memory at once;
/// those that can't be saved are tried again later. Any thread.
class FileUserDefaults::Stored {
  public:
    /// Reads the file at once.
    Stored(const QString &folder, Saving saving);

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

FileUserDefaults::Stored::Stored(const QString &folder, Saving saving) : m_file(folder), m_saving(saving) {
    load();
    if (saving == Saving::inBackground) {
        m_saver = std::jthread([this](const std::stop_token &stop) { saveInBackground(stop); });
    }
}

std::optional<DefaultsValue> FileUserDefaults::Stored::value(const QString &key) {
    std::unique_lock lock(m_mutex);
    if (m_stampIsFresh || m_file.stamp() != m_stamp) {
        load();
    }
    if (m_isBroken && m_saving == Saving::inBackground) {
        m_work.notify_one();
    } else if (m_isBroken) {
        lock.unlock();
        save();
        lock.lock();
    }
    if (const auto unsaved = m_unsaved.find(key); unsaved != m_unsaved.end()) {
        return unsaved->second;
    }
    const auto found = m_onDisk.find(key);
    return found == m_onDisk.end() ? std::nullopt : std::optional(found->second);
}

bool FileUserDefaults::Stored::change(const QString &key, const std::optional<DefaultsValue> &value) {
    {
        const std::scoped_lock lock(m_mutex);
        if (m_isUncertain) {
            const auto known = m_onDisk.find(key);
            m_basis.try_emplace(key, known == m_onDisk.end() ? std::nullopt : std::optional(known->second));
        }
        m_unsaved.insert_or_assign(key, value);
    }
    if (m_saving == Saving::atOnce) {
        return save();
    }
    m_work.notify_one();
    return !m_isFailing;
}

void FileUserDefaults::Stored::load() {
    const Content content = m_file.read();
    if (m_hadContent && content.state == Content::State::readable && qHash(content.bytes) == m_hash) {
        remember(content.stamp); // parsing a long file again would cost milliseconds
    } else if (auto values = valuesOf(content)) {
        adopt(*std::move(values), content);
    } else if (content.state == Content::State::unreadable) {
        m_isBroken = m_isBroken || !m_isUncertain || content.stamp != m_stamp; // reported once
        holdOn(content.stamp);
    } else if (mayBecomeWhole(content)) {
        m_stampIsFresh = true;
    } else {
        forget(content.stamp);
        m_isBroken = true;
    }
}

bool FileUserDefaults::Stored::mayBecomeWhole(const Content &content) const {
    return content.state != Content::State::unreadable && m_hadContent && content.stamp &&
           age(*content.stamp) < longestPartialWrite;
}

void FileUserDefaults::Stored::adopt(settingsDocument::Values values, const Content &content) {
    m_onDisk = std::move(values);
    m_hash = qHash(content.bytes);
    m_hadContent = content.stamp.has_value();
    remember(content.stamp);
}

void FileUserDefaults::Stored::remember(const std::optional<FileStamp> &stamp) {
    m_stamp = stamp;
    m_stampIsFresh = stamp && age(*stamp) < coarsestFileTime;
    m_isBroken = false;
    m_isUncertain = false;
    m_isFailing = m_isFailing && !m_unsaved.empty();
}

/// Lets the defaults apply for as long as the file looks like this.
void FileUserDefaults::Stored::forget(const std::optional<FileStamp> &stamp) {
    m_onDisk.clear();
    m_stamp = stamp;
    m_stampIsFresh = false;
    m_hadContent = false;
    m_isUncertain = stamp.has_value();
}

/// Keeps what was read last until the file can be read again, which its stamp need not show.
void FileUserDefaults::Stored::holdOn(const std::optional<FileStamp> &stamp) {
    m_stamp = stamp;
    m_stampIsFresh = true;
    m_isUncertain = true;
}

bool FileUserDefaults::Stored::save() {
    const std::scoped_lock oneAtATime(m_saveMutex);
    const bool isSaved = trySave();
    if (m_isFailing.exchange(!isSaved) || isSaved || m_hasComplained) {
        return isSaved;
    }
    if (m_file.isReadOnly()) {
        sayOnStandardError(QStringLiteral("%1 is read-only, so no setting can be saved").arg(m_file.path()));
    } else if (m_saving == Saving::inBackground) {
        sayOnStandardError(QStringLiteral("the settings in %1 could not be saved yet").arg(m_file.path()));
    }
    return false;
}

/// Saves everything unsaved on top of what is on disk now, after moving a broken file out of the way.
bool FileUserDefaults::Stored::trySave() {
    settingsDocument::Changes changes;
    settingsDocument::Changes basis;
    {
        const std::scoped_lock lock(m_mutex);
        changes = m_unsaved;
        basis = m_basis;
    }
    const SettingsFile::Lock fileLock(m_file, longestWaitOfAWrite);
    Content content = m_file.read();
    if (!valuesOf(content)) {
        if (!moveAside(content, fileLock)) {
            return false;
        }
        content = {};
    }
    const std::optional<Content> saved = written(m_file, content, keepingReplaced(changes, basis, content), fileLock);
    if (!saved) {
        return false;
    }
    auto values = valuesOf(*saved).value_or(settingsDocument::Values());
    const std::scoped_lock lock(m_mutex);
    std::erase_if(m_unsaved, [&changes](const auto &unsaved) { // newer changes are still to be saved
        const auto done = changes.find(unsaved.first);
        return done != changes.end() && done->second == unsaved.second;
    });
    std::erase_if(m_basis, [&changes](const auto &known) { return changes.contains(known.first); });
    adopt(std::move(values), *saved);
    return true;
}

/// Moves a file that is not a settings document out of the way and lets the defaults apply, or what was read last if
/// the file can't be read at all. False when the file stays: it must not be written to then.
bool FileUserDefaults::Stored::moveAside(const Content &content, const SettingsFile::Lock &fileLock) {
    {
        const std::scoped_lock lock(m_mutex);
        if (mayBecomeWhole(content)) {
            return false;
        }
    }
    const bool isMovable = fileLock && content.state != Content::State::unreadable;
    const std::optional<QString> newPath = isMovable ? m_file.moveAside(fileLock) : std::nullopt;
    const QString whatApplies = [&] {
        const std::scoped_lock lock(m_mutex);
        m_isBroken = false;
        content.state == Content::State::unreadable ? holdOn(content.stamp)
                                                    : forget(newPath ? std::nullopt : content.stamp);
        return m_hadContent ? QStringLiteral("those read last") : QStringLiteral("the defaults");
    }();
    if (!std::exchange(m_hasComplained, !newPath) || content.stamp != m_complainedOf) {
        sayOnStandardError(QStringLiteral("the settings in %1 cannot be read, so %2 apply; %3")
                               .arg(m_file.path(), whatApplies,
                                    newPath ? QStringLiteral("the file was kept as %1").arg(*newPath)
                                            : QStringLiteral("the file was left as it is, and no setting can be "
                                                             "saved")));
    }
    m_complainedOf = content.stamp;
    return newPath.has_value();
}

void FileUserDefaults::Stored::saveInBackground(const std::stop_token &stop) {
    std::unique_lock lock(m_mutex);
    while (m_work.wait(lock, stop, [this] { return m_isBroken || !m_unsaved.empty(); })) {
        const bool isLast = stop.stop_requested();
        lock.unlock();
        const bool isSaved = save();
        lock.lock();
        if (!isSaved && isLast) {
            return;
        }
        if (!isSaved) {
            m_work.wait_for(lock, stop, pauseBetweenTries, [] { return false; });
        }
    }
}

FileUserDefaults::FileUserDefaults(const QString &folder, Saving saving)
    : m_stored(std::make_unique<Stored>(folder, saving)) {}

FileUserDefaults::~FileUserDefaults() = default;

bool FileUserDefaults::isFailingToSave() const {
    return m_stored->isFailingToSave();
}

template <typename T> std::optional<T> FileUserDefaults::value(const QString &key) const {
    auto stored = m_stored->value(key);
    if (stored && std::holds_alternative<T>(*stored)) {
        return std::get<T>(*std::move(stored));
    }
    const std::scoped_lock lock(m_mutex);
    const auto registered = m_registered.find(key);
    const bool applies = registered != m_registered.end() && std::holds_alternative<T>(registered->second);
    return applies ? std::optional(std::get<T>(registered->second)) : std::nullopt;
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
    return m_stored->change(key, value);
}

bool FileUserDefaults::remove(const QString &key) {
    return m_stored->change(key, std::nullopt);
}

} // namespace platform::desktop
