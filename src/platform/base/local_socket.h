#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/base/unique_fd.h"

/// Stream sockets between processes of one machine, where systems differ from POSIX. Any thread.
namespace tallowcrest::local_socket {

/// A non-blocking socket that children do not inherit. Invalid, with `errno` set, on failure.
UniqueFD open();

/// A socket like that of `open`, connected to the one at `path`. Never blocks: invalid when nothing
/// accepts the connection at once, or the path is too long.
UniqueFD connect(const std::string& path);

/// Accepts the next waiting peer of `listener` as a socket like that of `open`. Invalid, with
/// `errno` set, when no peer waits.
UniqueFD accept(int listener);

/// Sends as much as fits without blocking. Returns the number of bytes, or -1 with `errno` set. A
/// peer that has closed gives an error rather than a signal.
ssize_t send(int socket, std::string_view text);

/// A short path of what is called `name` in the open `directory`, for a socket address, which holds
/// a hundred bytes. Empty where the system has none.
std::string shortPath(int directory, const std::string& name);

struct Peer {
    uid_t user;
    pid_t process;  ///< 0 when unknown
};

/// The credentials of the peer, as the kernel reports them. Absent when it does not.
std::optional<Peer> peerOf(int socket);

}  // namespace tallowcrest::local_socket
