#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/base/local_socket.h"

namespace tallowcrest::local_socket {
namespace {

UniqueFD configured(UniqueFD socket) {
    const int on = 1;
    if (socket.valid() &&
        (::fcntl(socket.get(), F_SETFD, FD_CLOEXEC) != 0 ||
         ::fcntl(socket.get(), F_SETFL, O_NONBLOCK) != 0 ||
         ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) != 0)) {
        socket.reset();
    }
    return socket;
}

}  // namespace

UniqueFD open() {
    return configured(UniqueFD(::socket(AF_UNIX, SOCK_STREAM, 0)));
}

UniqueFD accept(int listener) {
    return configured(UniqueFD(::accept(listener, nullptr, nullptr)));
}

ssize_t send(int socket, std::string_view text) {
    return ::send(socket, text.data(), text.size(), 0);
}

std::string shortPath(int /*directory*/, const std::string& /*name*/) {
    return {};
}

std::optional<Peer> peerOf(int socket) {
    Peer peer{};
    gid_t group = 0;
    if (::getpeereid(socket, &peer.user, &group) != 0) {
        return std::nullopt;
    }
    socklen_t size = sizeof peer.process;
    if (::getsockopt(socket, SOL_LOCAL, LOCAL_PEERPID, &peer.process, &size) != 0) {
        peer.process = 0;
    }
    return peer;
}

}  // namespace tallowcrest::local_socket
