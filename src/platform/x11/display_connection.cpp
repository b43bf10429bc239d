#include "platform/x11/display_connection.h"

#include <X11/Xauth.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <optional>
#include <stop_token>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/base/environment.h"
#include "platform/base/local_socket.h"
#include "platform/base/unique_fd.h"
#include "platform/x11/xcb_requests.h"

namespace tallowcrest {
namespace {

struct DisplayName {
    std::string number;
    int screen = 0;
};

/// Absent without a display, and for a remote one, because resolving its host could block.
std::optional<DisplayName> localDisplayName() {
    char* parsedHost = nullptr;
    int display = 0;
    DisplayName name;
    {
        const std::lock_guard guard(environmentLock());
        if (xcb_parse_display(nullptr, &parsedHost, &display, &name.screen) == 0) {
            return std::nullopt;
        }
    }
    const XcbPointer<char> host(parsedHost);
    const std::string_view displayHost(host.get());
    if (!displayHost.empty() && displayHost != "unix") {
        return std::nullopt;
    }
    name.number = std::to_string(display);
    return name;
}

struct DisposeAuth {
    void operator()(Xauth* auth) const { XauDisposeAuth(auth); }
};
using Auth = std::unique_ptr<Xauth, DisposeAuth>;

/// The authorization data for the display. Null when there is none; some displays require none.
Auth authFor(const DisplayName& name) {
    // The library builds the file name from the environment in a buffer shared by all threads.
    const std::lock_guard guard(environmentLock());
    const std::string host = hostName();
    std::string type = "MIT-MAGIC-COOKIE-1";
    std::array<char*, 1> types{type.data()};
    const std::array<int, 1> lengths{static_cast<int>(type.size())};
    return Auth(XauGetBestAuthByAddr(FamilyLocal, static_cast<unsigned short>(host.size()),
                                     host.c_str(), static_cast<unsigned short>(name.number.size()),
                                     name.number.c_str(), 1, types.data(), lengths.data()));
}

xcb_window_t rootOf(xcb_connection_t* connection, int screen) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (screen > 0 && screens.rem > 0) {
        xcb_screen_next(&screens);
        --screen;
    }
    return screens.rem > 0 ? screens.data->root : XCB_NONE;
}

}  // namespace

std::string hostName() {
    std::array<char, 256> name{};
    // The last byte stays zero, as a truncated name need not be terminated.
    return ::gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data())
                                                            : std::string();
}

DisplayConnection::SIGPIPEBlock::SIGPIPEBlock() {
    sigset_t pending;
    ::sigpending(&pending);
    wasPending_ = ::sigismember(&pending, SIGPIPE) == 1;
    ::sigemptyset(&signal_);
    ::sigaddset(&signal_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
}

DisplayConnection::SIGPIPEBlock::~SIGPIPEBlock() {
    if (!wasPending_) {
        const timespec noTime{};
        while (::sigtimedwait(&signal_, nullptr, &noTime) == -1 && errno == EINTR) {
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

DisplayConnection::DisplayConnection(std::chrono::milliseconds timeLimit) {
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    const std::optional<DisplayName> name = localDisplayName();
    if (!name) {
        return;
    }
    const UniqueFD socket = local_socket::connect("/tmp/.X11-unix/X" + name->number);
    if (!socket.valid() || !watch(socket.get(), deadline)) {
        return;
    }
    const Auth auth = authFor(*name);
    xcb_auth_info_t info{};
    if (auth) {
        info = {auth->name_length, auth->name, auth->data_length, auth->data};
    }
    const int handedOver = ::fcntl(socket.get(), F_DUPFD_CLOEXEC, 0);
    if (handedOver < 0) {
        return;
    }
    // The library owns the descriptor from here on, even on failure.
    connection_.reset(xcb_connect_to_fd(handedOver, auth ? &info : nullptr));
    if (isUsable()) {
        root_ = rootOf(connection_.get(), name->screen);
    }
}

DisplayConnection::~DisplayConnection() {
    // The watchdog uses members that are destroyed before it.
    if (watchdog_.joinable()) {
        watchdog_.request_stop();
        watchdog_.join();
    }
}

bool DisplayConnection::isUsable() const {
    return connection_ != nullptr && xcb_connection_has_error(connection_.get()) == 0;
}

/// The library waits without a time limit, so the watchdog shuts the socket down at the deadline.
/// It has its own descriptor, because the library's may be closed and its number reused.
bool DisplayConnection::watch(int socket, std::chrono::steady_clock::time_point deadline) {
    UniqueFD watched(::fcntl(socket, F_DUPFD_CLOEXEC, 0));
    if (!watched.valid()) {
        return false;
    }
    try {
        watchdog_ = std::jthread(
            [this, deadline, socketCopy = std::move(watched)](const std::stop_token& stop) {
                std::unique_lock guard(lock_);
                wake_.wait_until(guard, stop, deadline, [] { return false; });
                if (!stop.stop_requested()) {
                    ::shutdown(socketCopy.get(), SHUT_RDWR);
                }
            });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

}  // namespace tallowcrest
