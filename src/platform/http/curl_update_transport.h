#pragma once

#include <string>

#include "integration/update_ports.h"
#include "platform/base/proxy_variables.h"

namespace tallowcrest {

/// Requests over libcurl, each over a connection of its own, and the digests and signatures of
/// OpenSSL. A proxy is never asked for this machine. Neither the environment nor a configuration
/// file can change which certificates are trusted.
class CurlUpdateTransport final : public UpdateTransport {
public:
    struct Options {
        /// A file or a folder of authorities, see `CurlExchange::Options`; empty for those of the
        /// system.
        std::string certificateAuthorities = {};
        /// Asked on the thread of each request's caller; null for no proxy.
        ProxyVariables (*proxies)() = nullptr;
    };

    /// The first object of this folder prepares libcurl; see `prepareCurl`.
    explicit CurlUpdateTransport(Options options);

    UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                      const std::stop_token& stop) override;
    std::unique_ptr<Sha256> startSha256() override;
    bool isSigned(std::string_view publicKey, std::string_view signature,
                  std::string_view message) override;

private:
    Options options_;
};

}  // namespace tallowcrest
