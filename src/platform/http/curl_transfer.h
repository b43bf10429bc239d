#pragma once

#include <chrono>
#include <cstddef>
#include <stop_token>
#include <string>

#include "advisor/advisor_ports.h"
#include "platform/base/proxy_variables.h"

namespace tallowcrest {

/// One POST request with everything that it needs, independent of its caller.
struct CurlTransfer {
    std::string url;
    SecretText bearerToken;
    std::string body;
    std::chrono::milliseconds timeout;
    std::size_t longestReply;            ///< the bytes of its body
    std::string certificateAuthorities;  ///< a file; empty for those of the system
    ProxyVariables proxies;              ///< not used for this machine
};

/// Sends the request over a connection of its own and returns the reply. Blocks until `timeout` or
/// until `stop` is requested; both are transport errors then. Any thread.
HttpReply performTransfer(const CurlTransfer& transfer, const std::stop_token& stop);

/// Whether the host of an address is this machine for certain: "localhost", which libcurl never
/// looks up, or a loopback address. `host` without brackets. Pure; any thread.
bool isLoopbackHost(const std::string& host);

}  // namespace tallowcrest
