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

#include "platform/base/local_socket.h"
#include "platform/base/make_directories.h"
#include "platform/instance/instance_guard.h"

namespace tallowcrest {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds retryInterval{20};
constexpr int waitingStarts = 8;
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
/// Keeps the runtime directory's housekeeping from removing a file that has grown old.
constexpr mode_t keptByHousekeeping = S_ISVTX;

/// The guard's directory and the names of its two files.
struct Files {
    std::string path;
    UniqueFD directory;
    std::string lock;
    std::string socket;
};

std::string reason(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

/// Empty when the directory is there, ours, and nobody else may write in it; else why it is not.
std::string openDirectory(Files& files) {
    if (const int error = makeDirectories(files.path); error != 0) {
        return reason(files.path, error);
    }
    files.directory =
        UniqueFD(::open(files.path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!files.directory.valid() || ::fstat(files.directory.get(), &status) != 0) {
        return reason(files.path, errno);
    }
    if (status.st_uid != ::geteuid()) {
        return files.path + ": it belongs to another user";
    }
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        return files.path + ": others may write there";
    }
    return "";
}

enum class Lock { taken, busy, impossible };

/// `errno` tells why when it is impossible.
Lock takeLock(const Files& files, UniqueFD& lock) {
    // Never removed: two starts could then each hold a lock on a file of that name.
    lock = UniqueFD(::openat(files.directory.get(), files.lock.c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, ownerOnly));
    if (!lock.valid()) {
        return Lock::impossible;
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Lock::busy : Lock::impossible;
    }
    // Not every file system has that bit for a file; the lock holds without it.
    static_cast<void>(::fchmod(lock.get(), ownerOnly | keptByHousekeeping));
    return Lock::taken;
}

/// An address holds some hundred bytes of path. A longer one is named through the descriptor of its
/// directory, which a system without such names refuses.
sockaddr_un addressOf(const Files& files) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string path = files.path + '/' + files.socket;
    if (path.size() >= sizeof address.sun_path) {
        path = "/proc/self/fd/" + std::to_string(files.directory.get()) + '/' + files.socket;
    }
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

const sockaddr* general(const sockaddr_un& address) {
    // The one conversion that the socket calls ask for.
    return reinterpret_cast<const sockaddr*>(&address);
}

/// None with `errno` on failure. Call only with the lock held: then whatever lies there is a dead
/// instance's.
UniqueFD listenAt(const Files& files) {
    UniqueFD listener = local_socket::open();
    if (!listener.valid()) {
        return {};
    }
    ::unlinkat(files.directory.get(), files.socket.c_str(), 0);
    const sockaddr_un address = addressOf(files);
    if (::bind(listener.get(), general(address), sizeof address) != 0 ||
        ::listen(listener.get(), waitingStarts) != 0) {
        return {};
    }
    static_cast<void>(
        ::fchmodat(files.directory.get(), files.socket.c_str(), ownerOnly | keptByHousekeeping, 0));
    return listener;
}

enum class Answer {
    shown,
    silent,  ///< connected, and nothing came in time
    gone,    ///< nobody is there, or no longer; worth another try
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
            return Answer::silent;
        }
        std::array<char, instanceAcknowledgement.size()> buffer;
        const ssize_t count =
            ::recv(socket, buffer.data(), instanceAcknowledgement.size() - received.size(), 0);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        }
        if (count <= 0) {
            return Answer::gone;
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
        if (received == instanceAcknowledgement) {
            return Answer::shown;
        }
        if (received.size() == instanceAcknowledgement.size()) {
            return Answer::gone;
        }
    }
}

/// Asks the instance that holds the lock. `process` becomes its number when that is known.
Answer ask(const Files& files, const InstanceRequest& request, milliseconds patience,
           pid_t& process) {
    const auto deadline = Clock::now() + patience;
    const UniqueFD socket = local_socket::open();
    const sockaddr_un address = addressOf(files);
    if (!socket.valid() || ::connect(socket.get(), general(address), sizeof address) != 0) {
        return Answer::gone;
    }
    const auto peer = local_socket::peerOf(socket.get());
    if (!peer || peer->user != ::geteuid()) {
        return Answer::gone;
    }
    process = peer->process;
    const std::string text = instanceRequestText(request);
    // A new connection has room for a whole request.
    if (local_socket::send(socket.get(), text) != static_cast<ssize_t>(text.size())) {
        return Answer::gone;
    }
    return awaitAnswer(socket.get(), deadline);
}

InstanceStart unguarded(std::string message) {
    return {InstanceStart::Outcome::unguarded, std::nullopt, std::move(message)};
}

InstanceStart noAnswer(pid_t process) {
    const std::string which = process > 0 ? " (process " + std::to_string(process) + ")" : "";
    return {InstanceStart::Outcome::noAnswer, std::nullopt,
            "already running" + which + " but not answering; end that process to start anew"};
}

}  // namespace

InstanceStart startInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstancePatience& patience) {
    if (place.directory.empty()) {
        return unguarded("there is no directory for data");
    }
    Files files{place.directory, {}, place.name + ".lock", place.name + ".socket"};
    if (std::string why = openDirectory(files); !why.empty()) {
        return unguarded(std::move(why));
    }
    const auto deadline = Clock::now() + patience.change;
    pid_t process = 0;
    while (true) {
        UniqueFD lock;
        const Lock attempt = takeLock(files, lock);
        if (attempt == Lock::impossible) {
            return unguarded(reason(files.path + '/' + files.lock, errno));
        }
        if (attempt == Lock::taken) {
            UniqueFD listener = listenAt(files);
            if (!listener.valid()) {
                return unguarded(reason(files.path + '/' + files.socket, errno));
            }
            return {InstanceStart::Outcome::first,
                    InstanceGuard(std::move(lock), std::move(listener)),
                    {}};
        }
        lock.reset();
        switch (ask(files, request, patience.answer, process)) {
            case Answer::shown:
                return {InstanceStart::Outcome::handedOver, std::nullopt, {}};
            case Answer::silent:
                return noAnswer(process);
            case Answer::gone:
                break;
        }
        if (Clock::now() >= deadline) {
            return noAnswer(process);
        }
        ::poll(nullptr, 0, static_cast<int>(retryInterval.count()));
    }
}

}  // namespace tallowcrest
