#include <sys/socket.h>

#include "platform/base/local_socket.h"

namespace tallowcrest::local_socket {

UniqueFD open() {
    return UniqueFD(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

UniqueFD accept(int listener) {
    return UniqueFD(::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

ssize_t send(int socket, std::string_view text) {
    return ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
}

std::string shortPath(int directory, const std::string& name) {
    return "/proc/self/fd/" + std::to_string(directory) + '/' + name;
}

std::optional<Peer> peerOf(int socket) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
        return std::nullopt;
    }
    return Peer{credentials.uid, credentials.pid};
}

}  // namespace tallowcrest::local_socket
