#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace tallowcrest {

struct ExchangeLimits {
    std::chrono::milliseconds deadline{2000};            ///< for the whole exchange
    std::size_t longestAnswer = std::size_t{16} << 20U;  ///< in bytes
};

/// Sends `request` to the local stream socket at `path` and returns everything that the peer sends
/// until it closes the connection, perhaps nothing. Absent when nothing accepts the connection at
/// once, the connection fails, a limit is passed, or `stop` is requested. Blocks; any thread.
std::optional<std::string> exchangeOverLocalSocket(const std::string& path,
                                                   std::string_view request,
                                                   const std::stop_token& stop,
                                                   const ExchangeLimits& limits = {});

}  // namespace tallowcrest
