#include "platform/instance/instance_guard.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <variant>

#include "platform/base/local_socket.h"
#include "platform/base/make_directories.h"

namespace tallowcrest {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds retryInterval{20};
constexpr int listenBacklog = 8;
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
/// The sticky bit keeps the system's clean-up of the runtime directory from removing old files.
constexpr mode_t exemptFromCleanup = S_ISVTX;

/// The directory of the guard and the names of the two files in it.
struct Files {
    std::string path;
    UniqueFD directory;
    std::string lock;
    std::string socket;
};

std::string describe(const std::string& path, int error) {
    return path + ": " + std::strerror(error);
}

/// Creates and opens the directory. Returns an empty text when it belongs to this user and nobody
/// else may write in it, else what is wrong.
std::string openDirectory(Files& files) {
    if (const int error = makeDirectories(files.path); error != 0) {
        return describe(files.path, error);
    }
    files.directory =
        UniqueFD(::open(files.path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!files.directory.valid() || ::fstat(files.directory.get(), &status) != 0) {
        return describe(files.path, errno);
    }
    if (status.st_uid != ::geteuid()) {
        return files.path + ": it belongs to another user";
    }
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        return files.path + ": others may write there";
    }
    return "";
}

enum class Lock { taken, busy, failed };

/// Sets `errno` on failure.
Lock takeLock(const Files& files, UniqueFD& lock) {
    // The file is never removed: otherwise two starts could each lock a file of that name.
    lock = UniqueFD(::openat(files.directory.get(), files.lock.c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, ownerOnly));
    if (!lock.valid()) {
        return Lock::failed;
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Lock::busy : Lock::failed;
    }
    // Best effort: not every file system supports this bit for files.
    static_cast<void>(::fchmod(lock.get(), ownerOnly | exemptFromCleanup));
    return Lock::taken;
}

/// Absent, with `errno` set, when the path is too long for an address.
std::optional<sockaddr_un> addressOf(const Files& files) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string path = files.path + '/' + files.socket;
    if (path.size() >= sizeof address.sun_path) {
        path = local_socket::shortPath(files.directory.get(), files.socket);
    }
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    path.copy(address.sun_path, path.size());
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    // The conversion that the socket API requires.
    return reinterpret_cast<const sockaddr*>(&address);
}

/// Invalid, with `errno` set, on failure. Call only while holding the lock: then an existing socket
/// is left over from an instance that has ended.
UniqueFD listenAt(const Files& files) {
    UniqueFD listener = local_socket::open();
    if (!listener.valid()) {
        return {};
    }
    ::unlinkat(files.directory.get(), files.socket.c_str(), 0);
    const auto address = addressOf(files);
    if (!address || ::bind(listener.get(), generic(*address), sizeof *address) != 0 ||
        ::listen(listener.get(), listenBacklog) != 0) {
        return {};
    }
    // With the checks that packages are built with, a cast to void would not do.
    [[maybe_unused]] const int ignored =
        ::fchmodat(files.directory.get(), files.socket.c_str(), ownerOnly | exemptFromCleanup, 0);
    return listener;
}

enum class Answer {
    shown,
    timeout,      ///< connected, but no reply came in time
    unavailable,  ///< no instance listens, or it closed the connection; may be retried
};

Answer awaitAnswer(int socket, Clock::time_point deadline) {
    std::string received;
    while (true) {
        const auto left = std::max(
            std::chrono::duration_cast<milliseconds>(deadline - Clock::now()), milliseconds(0));
        pollfd waiting{socket, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return Answer::timeout;
        }
        std::array<char, instanceAcknowledgement.size()> buffer;
        const ssize_t count =
            ::recv(socket, buffer.data(), instanceAcknowledgement.size() - received.size(), 0);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        }
        if (count <= 0) {
            return Answer::unavailable;
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
        if (received == instanceAcknowledgement) {
            return Answer::shown;
        }
        if (received.size() == instanceAcknowledgement.size()) {
            return Answer::unavailable;
        }
    }
}

/// Sends the request to the instance that holds the lock, and sets `process` to its pid if known.
Answer ask(const Files& files, const InstanceRequest& request, milliseconds timeout,
           pid_t& process) {
    const auto deadline = Clock::now() + timeout;
    const UniqueFD socket = local_socket::open();
    const auto address = addressOf(files);
    if (!socket.valid() || !address ||
        ::connect(socket.get(), generic(*address), sizeof *address) != 0) {
        return Answer::unavailable;
    }
    const auto peer = local_socket::peerOf(socket.get());
    if (!peer || peer->user != ::geteuid()) {
        return Answer::unavailable;
    }
    process = peer->process;
    const std::string text = instanceRequestText(request);
    // The buffer of a new connection holds a whole request.
    if (local_socket::send(socket.get(), text) != static_cast<ssize_t>(text.size())) {
        return Answer::unavailable;
    }
    return awaitAnswer(socket.get(), deadline);
}

InstanceStart unguarded(std::string message) {
    return {InstanceStart::Kind::unguarded, std::nullopt, std::move(message)};
}

InstanceStart noAnswer(pid_t process) {
    const std::string which = process > 0 ? " (process " + std::to_string(process) + ")" : "";
    return {InstanceStart::Kind::noAnswer, std::nullopt,
            "already running" + which + " but not answering; end that process to start anew"};
}

UniqueFD openSpare() {
    return UniqueFD(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

bool isOutOfDescriptors(int error) {
    return error == EMFILE || error == ENFILE;
}

/// Whether no peer waits any more.
bool meansNoPeer(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == ECONNABORTED || error == EINTR;
}

}  // namespace

InstancePeer::State InstancePeer::read() {
    // One read per call, so that a peer that keeps sending cannot block the event loop.
    std::array<char, longestInstanceRequest + 1> buffer;
    const ssize_t count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
        return State::incomplete;
    }
    if (count <= 0) {
        return State::refused;
    }
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    const auto parsed = parseInstanceRequest(received_);
    if (const auto* request = std::get_if<InstanceRequest>(&parsed)) {
        request_ = *request;
        return State::requested;
    }
    return std::holds_alternative<IncompleteRequest>(parsed) ? State::incomplete : State::refused;
}

void InstancePeer::acknowledge() const {
    // The few bytes always fit into the buffer of a new connection.
    local_socket::send(socket_.get(), instanceAcknowledgement);
}

InstanceGuard::InstanceGuard(UniqueFD lock, UniqueFD listener)
    : lock_(std::move(lock)), listener_(std::move(listener)), spare_(openSpare()) {}

InstanceGuard::Accepted InstanceGuard::accept(std::optional<InstancePeer>& peer) {
    UniqueFD socket = local_socket::accept(listener_.get());
    if (!socket.valid() && isOutOfDescriptors(errno) && spare_.valid()) {
        spare_.reset();
        socket = local_socket::accept(listener_.get());
    } else if (!spare_.valid()) {
        const int savedError = errno;
        spare_ = openSpare();
        errno = savedError;
    }
    if (!socket.valid()) {
        return meansNoPeer(errno) ? Accepted::nothing : Accepted::postponed;
    }
    const auto caller = local_socket::peerOf(socket.get());
    if (!caller || caller->user != ::geteuid()) {
        return Accepted::nothing;
    }
    peer.emplace(std::move(socket));
    return Accepted::peer;
}

InstanceStart startInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstanceTimeouts& timeouts) {
    if (place.directory.empty()) {
        return unguarded("there is no directory for data");
    }
    Files files{place.directory, {}, place.name + ".lock", place.name + ".socket"};
    if (std::string why = openDirectory(files); !why.empty()) {
        return unguarded(std::move(why));
    }
    const auto deadline = Clock::now() + timeouts.transition;
    pid_t process = 0;
    while (true) {
        UniqueFD lock;
        const Lock attempt = takeLock(files, lock);
        if (attempt == Lock::failed) {
            return unguarded(describe(files.path + '/' + files.lock, errno));
        }
        if (attempt == Lock::taken) {
            UniqueFD listener = listenAt(files);
            if (!listener.valid()) {
                return unguarded(describe(files.path + '/' + files.socket, errno));
            }
            return {InstanceStart::Kind::first,
                    InstanceGuard(std::move(lock), std::move(listener)),
                    {}};
        }
        lock.reset();
        switch (ask(files, request, timeouts.answer, process)) {
            case Answer::shown:
                return {InstanceStart::Kind::handedOver, std::nullopt, {}};
            case Answer::timeout:
                return noAnswer(process);
            case Answer::unavailable:
                break;
        }
        if (Clock::now() >= deadline) {
            return noAnswer(process);
        }
        ::poll(nullptr, 0, static_cast<int>(retryInterval.count()));
    }
}

}  // namespace tallowcrest
