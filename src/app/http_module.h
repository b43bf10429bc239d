#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

/// The exchange of the module "tallowcrest-http.so" in the folder of the running program. The first
/// request loads it, and it remains for as long as the process lives. The libraries behind it would
/// otherwise add 8 ms to each start, also of those who never ask a provider. Any thread.
class HttpModule final : public HttpExchange {
public:
    /// That the module cannot be loaded is a transport error, in the system's words.
    std::optional<HttpReply> post(const HttpRequest& request, const std::stop_token& stop) override;

private:
    void load();

    std::once_flag once_;
    std::unique_ptr<HttpExchange> loaded_;  ///< null when it cannot be loaded
    std::string problem_;                   ///< then the reason
};

}  // namespace tallowcrest
