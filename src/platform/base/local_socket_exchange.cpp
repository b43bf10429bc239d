#include "platform/base/local_socket_exchange.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/base/local_socket.h"

namespace tallowcrest {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// How soon a requested stop is noticed.
constexpr milliseconds stopInterval{50};

constexpr std::size_t receiveBytes = std::size_t{64} << 10U;

/// Whether the call can be repeated once the socket is ready.
bool isTemporary(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

class Exchange {
public:
    Exchange(UniqueFD socket, const std::stop_token& stop, const ExchangeLimits& limits)
        : socket_(std::move(socket)),
          stop_(stop),
          longestAnswer_(limits.longestAnswer),
          deadline_(Clock::now() + limits.deadline) {}

    bool send(std::string_view request) {
        while (!request.empty()) {
            const ssize_t count = local_socket::send(socket_.get(), request);
            if (count >= 0) {
                request.remove_prefix(static_cast<std::size_t>(count));
            } else if (!isTemporary(errno) || !waitFor(POLLOUT)) {
                return false;
            }
        }
        return true;
    }

    std::optional<std::string> receive() {
        std::string answer;
        while (true) {
            const std::size_t size = answer.size();
            answer.resize(size + receiveBytes);
            const ssize_t count = ::recv(socket_.get(), answer.data() + size, receiveBytes, 0);
            const int error = errno;
            answer.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
            if (count == 0) {
                return answer;
            }
            if (answer.size() > longestAnswer_ || (count < 0 && !isTemporary(error)) ||
                !waitFor(POLLIN)) {
                return std::nullopt;
            }
        }
    }

private:
    /// False at the deadline and when the stop is requested.
    bool waitFor(short event) {
        while (!stop_.stop_requested()) {
            const auto left = std::chrono::ceil<milliseconds>(deadline_ - Clock::now());
            if (left <= milliseconds(0)) {
                return false;
            }
            pollfd waiting{socket_.get(), event, 0};
            if (::poll(&waiting, 1, static_cast<int>(std::min(left, stopInterval).count())) > 0) {
                return true;
            }
        }
        return false;
    }

    UniqueFD socket_;
    const std::stop_token& stop_;
    std::size_t longestAnswer_;
    Clock::time_point deadline_;
};

}  // namespace

std::optional<std::string> exchangeOverLocalSocket(const std::string& path,
                                                   std::string_view request,
                                                   const std::stop_token& stop,
                                                   const ExchangeLimits& limits) {
    UniqueFD socket = local_socket::connect(path);
    if (!socket.valid()) {
        return std::nullopt;
    }
    Exchange exchange(std::move(socket), stop, limits);
    return exchange.send(request) ? exchange.receive() : std::nullopt;
}

}  // namespace tallowcrest
