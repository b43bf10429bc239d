#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>

#include "advisor/advisor_ports.h"
#include "integration/update_ports.h"
#include "platform/base/proxy_variables.h"

namespace tallowcrest {

/// What makes a request one for a file: a GET over https alone, without a token and a body.
struct CurlDownload {
    /// Takes the body of a reply with the status 200, of which nothing else is kept.
    UpdateTransport::TakeBytes take;
    /// Gets the address to which the reply redirects; stays empty without one. Never null.
    std::string* redirection;
};

/// One POST request with everything that it needs, independent of its caller.
struct CurlTransfer {
    std::string url;
    SecretText bearerToken = {};
    std::string body = {};
    /// 0 for a download that goes on as long as something arrives once a minute.
    std::chrono::milliseconds timeout;
    std::size_t longestReply;            ///< the bytes of its body
    std::string certificateAuthorities;  ///< a file or a folder, see `CurlExchange::Options`
    ProxyVariables proxies;              ///< not used for this machine
    std::optional<CurlDownload> download = {};
};

/// Sends the request over a connection of its own and returns the reply, that of a download without
/// its body. Blocks until `timeout` or until `stop` is requested; both are transport errors then,
/// and so is a lack of memory, also of `CurlDownload::take`. Any thread.
HttpReply performTransfer(const CurlTransfer& transfer, const std::stop_token& stop);

/// The transport error for a lack of memory. Takes no memory itself. Any thread.
HttpReply outOfMemory();

/// Whether two addresses are https and of the same host. Pure; any thread.
bool areOfOneSecureHost(const std::string& first, const std::string& second);

/// Whether the host of an address is this machine for certain: "localhost", which libcurl never
/// looks up, or a loopback address. `host` without brackets. Pure; any thread.
bool isLoopbackHost(const std::string& host);

}  // namespace tallowcrest
