#include "app/http_module.h"

#include <dlfcn.h>

#include <filesystem>

#include "platform/base/environment.h"
#include "platform/base/proxy_variables.h"
#include "platform/host.h"
#include "platform/http/http_module.h"

namespace tallowcrest {

std::optional<HttpReply> HttpModule::post(const HttpRequest& request, const std::stop_token& stop) {
    std::call_once(once_, [this] { load(); });
    if (loaded_ == nullptr) {
        return HttpReply{.transportError = problem_};
    }
    return loaded_->post(request, stop);
}

void HttpModule::load() {
    const std::filesystem::path self = host::executablePath();
    if (self.empty()) {
        // A bare name would be looked up elsewhere, where anybody could place one.
        problem_ = "this program's own place is not known";
        return;
    }
    const std::filesystem::path file = self.parent_path() / "tallowcrest-http.so";
    // The libraries read variables when they are loaded and prepared.
    const std::lock_guard guard(environmentLock());
    // Never unloaded: a name server may still be asked in a thread of its libraries.
    void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const make = module == nullptr ? nullptr : ::dlsym(module, httpModuleFunction);
    if (make == nullptr) {
        problem_ = ::dlerror();
        return;
    }
    loaded_.reset(
        reinterpret_cast<decltype(&tallowcrest_make_http_exchange)>(make)(proxyVariables));
}

}  // namespace tallowcrest
