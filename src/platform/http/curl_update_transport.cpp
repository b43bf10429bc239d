#include "platform/http/curl_update_transport.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/http/curl_library.h"
#include "platform/http/curl_transfer.h"

namespace tallowcrest {
namespace {

/// The host of an https address, in lower case; empty when it is none.
std::string secureHostOf(const std::string& address) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    const auto part = [&url](CURLUPart which) {
        char* text = nullptr;
        curl_url_get(url.get(), which, &text, 0);
        std::string copy = text == nullptr ? "" : text;
        curl_free(text);
        return copy;
    };
    if (!url || curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK ||
        part(CURLUPART_SCHEME) != "https") {
        return {};
    }
    std::string host = part(CURLUPART_HOST);
    for (char& c : host) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return host;
}

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
        const std::string host = secureHostOf(redirection);
        if (host.empty() || host != secureHostOf(url)) {
            return {.status = reply.status, .error = "The server redirects to another place."};
        }
        url = std::move(redirection);
    }
    return {.error = "The server redirects too often."};
}

}  // namespace tallowcrest
