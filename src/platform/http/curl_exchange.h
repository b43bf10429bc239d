#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <thread>

#include "advisor/advisor_ports.h"
#include "platform/base/proxy_variables.h"

namespace tallowcrest {

/// Exchanges over libcurl, each over a connection of its own: they are rare, and an open connection
/// would keep the header with the key in memory. A proxy is never asked for this machine. Neither
/// the environment nor a configuration file can change which certificates are trusted.
class CurlExchange final : public HttpExchange {
public:
    struct Options {
        std::size_t longestReply = maximumReplyBytes;
        /// A file of the authorities to trust, or a folder where each has the hash of its name;
        /// empty for those of the system.
        std::string certificateAuthorities = {};
        /// Asked on the thread of each exchange's caller; null for no proxy.
        ProxyVariables (*proxies)() = nullptr;
    };

    /// The first object prepares libcurl; see `prepareCurl`.
    explicit CurlExchange(Options options);
    CurlExchange(const CurlExchange&) = delete;
    CurlExchange& operator=(const CurlExchange&) = delete;

    /// Ends the exchanges that nobody waits for any more, and waits for their end.
    ~CurlExchange() override;

    std::optional<HttpReply> post(const HttpRequest& request, const std::stop_token& stop) override;

private:
    struct Box;
    struct Abandoned;

    std::optional<HttpReply> postOnThread(const HttpRequest& request, const std::stop_token& stop);
    /// Lets an exchange go on that nobody waits for any more.
    void abandon(std::jthread exchange);

    Options options_;
    std::shared_ptr<Abandoned> abandoned_;  ///< shared with those who wait for their ends
};

}  // namespace tallowcrest
