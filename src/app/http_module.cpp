#include "app/http_module.h"

#include <dlfcn.h>

#include <filesystem>
#include <string_view>

#include "platform/base/environment.h"
#include "platform/base/proxy_variables.h"
#include "platform/host.h"
#include "platform/http/http_module.h"

namespace tallowcrest {

namespace {

/// Not for one that an upgrade has put beside this program, which still runs.
bool isOfThisBuild(void* module) {
    using Version = const char* (*)();
    const auto version = reinterpret_cast<Version>(::dlsym(module, moduleVersionFunction));
    return version != nullptr && std::string_view(version()) == TALLOWCREST_MODULE_VERSION;
}

/// What a function of the module makes; null, with the reason in `problem`, when the module cannot
/// be loaded or is of another build.
template <class Service>
std::unique_ptr<Service> madeByModule(const char* function, std::string& problem) {
    const std::filesystem::path self = host::executablePath();
    if (self.empty()) {
        // A bare name would be looked up elsewhere, where anybody could place one.
        problem = "this program's own place is not known";
        return nullptr;
    }
    const std::filesystem::path file = self.parent_path() / "tallowcrest-http.so";
    // The libraries read variables when they are loaded and prepared.
    const std::lock_guard guard(environmentLock());
    // Never unloaded: a name server may still be asked in a thread of its libraries. Lazily: to
    // look up all functions of those thirty libraries at once takes 1.5 MB of their symbol tables.
    void* const module = ::dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (module != nullptr && !isOfThisBuild(module)) {
        problem = "Restart Tallowcrest to use the network.";
        return nullptr;
    }
    void* const make = module == nullptr ? nullptr : ::dlsym(module, function);
    if (make == nullptr) {
        problem = ::dlerror();
        return nullptr;
    }
    using Make = Service* (*)(ProxyVariables(*proxies)());
    return std::unique_ptr<Service>(reinterpret_cast<Make>(make)(proxyVariables));
}

}  // namespace

template <class Service>
Service* ModuleService<Service>::get() {
    std::call_once(once_, [this] { loaded_ = madeByModule<Service>(function_, problem_); });
    return loaded_.get();
}

HttpModule::HttpModule() : exchange_(httpModuleFunction) {}

std::optional<HttpReply> HttpModule::post(const HttpRequest& request, const std::stop_token& stop) {
    HttpExchange* const exchange = exchange_.get();
    return exchange == nullptr ? HttpReply{.transportError = exchange_.problem()}
                               : exchange->post(request, stop);
}

UpdateModule::UpdateModule() : transport_(updateModuleFunction) {}

UpdateReply UpdateModule::fetch(const UpdateRequest& request, const TakeBytes& take,
                                const std::stop_token& stop) {
    UpdateTransport* const transport = transport_.get();
    return transport == nullptr ? UpdateReply{.error = transport_.problem()}
                                : transport->fetch(request, take, stop);
}

std::unique_ptr<Sha256> UpdateModule::startSha256() {
    UpdateTransport* const transport = transport_.get();
    return transport == nullptr ? nullptr : transport->startSha256();
}

bool UpdateModule::isSigned(std::string_view publicKey, std::string_view signature,
                            std::string_view message) {
    UpdateTransport* const transport = transport_.get();
    return transport != nullptr && transport->isSigned(publicKey, signature, message);
}

}  // namespace tallowcrest
