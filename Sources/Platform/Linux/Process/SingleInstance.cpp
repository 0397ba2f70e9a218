// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Process/SingleInstance.h"

#include "Platform/Linux/Folders.h"

#include <QDeadlineTimer>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>

namespace platform::desktop {

namespace {

/// Sticky, so that a service which clears up the run-time folder leaves the files alone.
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR | S_ISVTX;
constexpr char comes = 1;

/// The display without the number of its screen. Where there are both kinds, the program runs through XWayland.
QString display() {
    const QString name = qEnvironmentVariable(qEnvironmentVariableIsEmpty("DISPLAY") ? "WAYLAND_DISPLAY" : "DISPLAY")
                             .replace(u'/', u'_');
    const qsizetype screen = name.lastIndexOf(u'.');
    return screen > name.lastIndexOf(u':') ? name.left(screen) : name;
}

QByteArray pathOf(SingleInstance::Kind kind, const char *suffix) {
    const auto *const name = kind == SingleInstance::Kind::program ? "/program-" : "/setup-";
    return QFile::encodeName(folders::runtime() + QLatin1StringView(name) + display() + QLatin1StringView(suffix));
}

FileDescriptor lockFile(SingleInstance::Kind kind, int flags) {
    return FileDescriptor(
        ::open(pathOf(kind, ".lock").constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, ownerOnly));
}

/// To be used with the commands for open file descriptions (OFD), whose locks last until the file itself is closed.
struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// Null for a path that is too long for a socket.
std::optional<sockaddr_un> addressOf(const QByteArray &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path) {
        return std::nullopt;
    }
    std::ranges::copy(path, address.sun_path);
    return address;
}

FileDescriptor streamSocket(int flags) {
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

void limitWaits(const FileDescriptor &socket, qint64 milliseconds) {
    const timeval longest{.tv_sec = milliseconds / 1000, .tv_usec = (milliseconds % 1000) * 1000};
    for (const int waiting : {SO_SNDTIMEO, SO_RCVTIMEO}) { // a full queue makes connecting wait as well
        ::setsockopt(socket.get(), SOL_SOCKET, waiting, &longest, sizeof longest);
    }
}

} // namespace

std::unique_ptr<SingleInstance> SingleInstance::become(Kind kind) {
    folders::make(folders::runtime());
    FileDescriptor lock = lockFile(kind, O_CREAT);
    struct flock wanted = wholeFile();
    if (lock && ::fcntl(lock.get(), F_OFD_SETLK, &wanted) != 0 && (errno == EAGAIN || errno == EACCES)) {
        return nullptr;
    }
    std::unique_ptr<SingleInstance> instance(new SingleInstance(std::move(lock)));
    instance->listen(pathOf(kind, ".socket"));
    return instance;
}

SingleInstance::~SingleInstance() {
    if (m_socket) {
        ::unlink(m_socketPath.constData());
    }
}

void SingleInstance::listen(const QByteArray &path) {
    const auto address = addressOf(path);
    FileDescriptor socket = streamSocket(SOCK_NONBLOCK);
    if (!m_lock || !socket || !address) {
        return;
    }
    ::unlink(path.constData()); // left by one that was killed
    constexpr int mostWaiting = 8;
    if (::bind(socket.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof *address) == 0 &&
        ::chmod(path.constData(), ownerOnly) == 0 && ::listen(socket.get(), mostWaiting) == 0) {
        m_socket = std::move(socket);
        m_socketPath = path;
    }
}

bool SingleInstance::isThere(Kind kind) {
    const FileDescriptor file = lockFile(kind, 0);
    struct flock held = wholeFile();
    return file && ::fcntl(file.get(), F_OFD_GETLK, &held) == 0 && held.l_type != F_UNLCK;
}

bool SingleInstance::summon(std::chrono::milliseconds longestWait, Kind kind) {
    const auto address = addressOf(pathOf(kind, ".socket"));
    const QDeadlineTimer deadline(longestWait);
    for (; address && isThere(kind) && !deadline.hasExpired();
         std::this_thread::sleep_for(std::chrono::milliseconds(10))) {
        const FileDescriptor socket = streamSocket(0);
        limitWaits(socket, std::max<qint64>(deadline.remainingTime(), 1));
        // One that has only just started may not be listening yet.
        if (::connect(socket.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof *address) == 0) {
            char said = 0;
            return ::recv(socket.get(), &said, 1, 0) == 1;
        }
    }
    return false;
}

void SingleInstance::onSummons(std::function<void()> handler) {
    m_summoned = std::move(handler);
    if (m_socket) {
        m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { answer(); });
    }
}

void SingleInstance::answer() {
    const FileDescriptor caller(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (caller && ::send(caller.get(), &comes, 1, MSG_NOSIGNAL) == 1) {
        m_summoned();
    }
}

} // namespace platform::desktop
