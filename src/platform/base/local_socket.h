#pragma once

#include <sys/types.h>

#include <optional>
#include <string_view>

#include "platform/base/unique_fd.h"

/// What stream sockets between processes of one machine need beyond POSIX. Any thread.
namespace tallowcrest::local_socket {

/// A socket that never blocks and that no child inherits. None with `errno` on failure.
UniqueFD open();

/// The next peer that waits at `listener`, as such a socket. None with `errno` when nobody does.
UniqueFD accept(int listener);

/// Sends as much as fits without waiting. A peer that is gone is an error and no signal. The number
/// of bytes, or -1 with `errno`.
ssize_t send(int socket, std::string_view text);

struct Peer {
    uid_t user;
    pid_t process;  ///< 0 when the system does not tell
};

/// Who is at the other end, by the word of the kernel. Absent when it gives none.
std::optional<Peer> peerOf(int socket);

}  // namespace tallowcrest::local_socket
