#pragma once

#include <optional>
#include <string_view>

/// The interface that the tailnet's daemon offers on its local socket: one HTTP request for each
/// connection. Any thread.
namespace tallowcrest::local_api {

/// Asks for the status. As a request of HTTP/1.0 it is answered without chunks, and the daemon
/// closes the connection behind the answer.
inline constexpr std::string_view statusRequest =
    "GET /localapi/v0/status HTTP/1.0\r\nHost: local-tailscaled.sock\r\n\r\n";

/// The body of an answer with the status 200, a view into `answer`. Absent for any other text. An
/// answer that was cut short is not told from a whole one.
std::optional<std::string_view> bodyOf(std::string_view answer);

}  // namespace tallowcrest::local_api
