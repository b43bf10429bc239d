#include "platform/base/local_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

namespace tallowcrest::local_socket {

UniqueFD connect(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return {};
    }
    path.copy(address.sun_path, path.size());
    UniqueFD socket = open();
    // The conversion that the socket API requires.
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (socket.valid() && ::connect(socket.get(), generic, sizeof address) != 0) {
        socket.reset();
    }
    return socket;
}

}  // namespace tallowcrest::local_socket
