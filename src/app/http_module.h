#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "advisor/advisor_ports.h"
#include "integration/update_ports.h"

namespace tallowcrest {

/// A service that the module "tallowcrest-http.so" in the folder of the running program makes. The
/// first call of `get` loads the module, and it remains for as long as the process lives. The
/// libraries behind it would otherwise add 8 ms to each start, also of those who never ask a
/// provider. Any thread.
template <class Service>
class ModuleService {
public:
    /// The function of the module that makes it.
    explicit ModuleService(const char* function) : function_(function) {}

    /// Null when the module cannot be loaded, or is not of this program's build.
    Service* get();
    /// Then the reason, in words for the user.
    const std::string& problem() const { return problem_; }

private:
    const char* function_;
    std::once_flag once_;
    std::unique_ptr<Service> loaded_;
    std::string problem_;
};

/// Any thread.
class HttpModule final : public HttpExchange {
public:
    HttpModule();

    /// That the module cannot be loaded is a transport error.
    std::optional<HttpReply> post(const HttpRequest& request, const std::stop_token& stop) override;

private:
    ModuleService<HttpExchange> exchange_;
};

/// Any thread.
class UpdateModule final : public UpdateTransport {
public:
    UpdateModule();

    UpdateReply fetch(const UpdateRequest& request, const TakeBytes& take,
                      const std::stop_token& stop) override;
    std::unique_ptr<Sha256> startSha256() override;
    bool isSigned(std::string_view publicKey, std::string_view signature,
                  std::string_view message) override;

private:
    ModuleService<UpdateTransport> transport_;
};

}  // namespace tallowcrest
