#include "platform/http/curl_update_transport.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/http/curl_library.h"
#include "platform/http/curl_transfer.h"

namespace tallowcrest {
namespace {

bool isRedirection(int status) {
    constexpr int first = 300;
    constexpr int last = 399;
    return status >= first && status <= last;
}

}  // namespace

CurlUpdateTransport::CurlUpdateTransport(Options options) : options_(std::move(options)) {
    prepareCurl();  // a failure is told by each request
}

UpdateReply CurlUpdateTransport::fetch(const UpdateRequest& request, const TakeBytes& take,
                                       const std::stop_token& stop) {
    constexpr int mostRequests = 6;
    // The timeout is for the whole chain of redirections.
    const auto begun = std::chrono::steady_clock::now();
    const auto timeLeft = [&]() -> std::chrono::milliseconds {
        if (!request.timeout) {
            return std::chrono::milliseconds(0);
        }
        const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begun);
        return std::max(*request.timeout - passed, std::chrono::milliseconds(1));
    };
    std::string url = request.url;
    for (int count = 0; count < mostRequests; ++count) {
        std::string redirection;
        const HttpReply reply = performTransfer(
            {.url = url,
             .timeout = timeLeft(),
             .longestReply = request.longestBody,
             .certificateAuthorities = options_.certificateAuthorities,
             .proxies = options_.proxies != nullptr ? options_.proxies() : ProxyVariables(),
             .download = CurlDownload{.take = take, .redirection = &redirection}},
            stop);
        if (reply.transportError) {
            return {.status = reply.status, .error = *reply.transportError};
        }
        if (!isRedirection(reply.status) || redirection.empty()) {
            return {.status = reply.status};
        }
        if (!areOfOneSecureHost(redirection, url)) {
            return {.status = reply.status, .error = "The server redirects to another place."};
        }
        url = std::move(redirection);
    }
    return {.error = "The server redirects too often."};
}

}  // namespace tallowcrest
