#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

/// Exchanges over libcurl, each over a connection of its own: they are rare, and an open connection
/// would keep the header with the key in memory. A proxy is taken from the environment, but never
/// for this machine. Neither the environment nor a configuration file can change which
/// certificates are trusted.
class CurlExchange final : public HttpExchange {
public:
    struct Options {
        std::size_t longestReply = maximumReplyBytes;
        /// A file of the authorities to trust instead of those of the system; empty for those.
        std::string certificateAuthorities = {};
    };

    CurlExchange();
    explicit CurlExchange(Options options);
    CurlExchange(const CurlExchange&) = delete;
    CurlExchange& operator=(const CurlExchange&) = delete;

    /// Ends the exchanges that nobody waits for any more.
    ~CurlExchange() override;

    std::optional<HttpReply> post(const HttpRequest& request, const std::stop_token& stop) override;

private:
    struct Box;
    struct Running {
        std::shared_ptr<Box> box;
        std::jthread thread;
    };

    /// Joins the threads that have ended.
    void removeEnded();

    Options options_;
    std::mutex lock_;
    std::list<Running> running_;
};

}  // namespace tallowcrest
