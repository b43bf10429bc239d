#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "advisor/advisor_ports.h"
#include "integration/update_ports.h"

namespace tallowcrest {

/// The exchange of the module "tallowcrest-http.so" in the folder of the running program. The first
/// request loads it, and it remains for as long as the process lives. The libraries behind it would
/// otherwise add 8 ms to each start, also of those who never ask a provider. Any thread.
class HttpModule final : public HttpExchange {
public:
    /// That the module cannot be loaded is a transport error, in the system's words.
    std::optional<HttpReply> post(const HttpRequest& request, const std::stop_token& stop) override;

private:
    std::once_flag once_;
    std::unique_ptr<HttpExchange> loaded_;  ///< null when it cannot be loaded
    std::string problem_;                   ///< then the reason
};

/// The updates' part of the same module, loaded in the same way. Any thread.
class UpdateModule final : public UpdateTransport {
public:
    UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                      const std::stop_token& stop) override;
    std::unique_ptr<Sha256> startSha256() override;
    bool isSigned(std::string_view publicKey, std::string_view signature,
                  std::string_view message) override;

private:
    /// Null when it cannot be loaded.
    UpdateTransport* loaded();

    std::once_flag once_;
    std::unique_ptr<UpdateTransport> loaded_;
    std::string problem_;
};

}  // namespace tallowcrest
