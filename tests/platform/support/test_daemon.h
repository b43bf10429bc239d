#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// A daemon that serves one connection on a real socket.
class TestDaemon {
public:
    /// `serve` is called on a thread of its own with the connection, which is then closed.
    TestDaemon(const std::string& path, std::function<void(int connection)> serve)
        : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        if (::bind(listener_.get(), generic, sizeof address) != 0 ||
            ::listen(listener_.get(), 1) != 0) {
            throw std::runtime_error("cannot listen at " + path);
        }
        thread_ = std::jthread([this, serve = std::move(serve)] {
            const UniqueFD connection(::accept(listener_.get(), nullptr, nullptr));
            serve(connection.get());
        });
    }

private:
    UniqueFD listener_;
    std::jthread thread_;
};

/// What the peer sends, up to `size` bytes; less when it closes the connection before.
inline std::string received(int connection, std::size_t size) {
    std::string text(size, '\0');
    const ssize_t count = ::recv(connection, text.data(), size, MSG_WAITALL);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return text;
}

/// Sends the text, unless the peer closes the connection.
inline void send(int connection, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::send(connection, text.data(), text.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Blocks until the peer closes the connection.
inline void awaitTheEnd(int connection) {
    while (!received(connection, 1).empty()) {
    }
}

}  // namespace tallowcrest
