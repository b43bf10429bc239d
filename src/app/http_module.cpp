#include "app/http_module.h"

#include <dlfcn.h>

#include <filesystem>

#include "platform/host.h"
#include "platform/http/http_module.h"

namespace tallowcrest {

LoadedExchange loadHttpExchange() {
    const std::filesystem::path self = host::executablePath();
    if (self.empty()) {
        // A bare name would be looked up elsewhere, where anybody could place one.
        return {.problem = "this program's own place is not known"};
    }
    const std::filesystem::path file = self.parent_path() / "tallowcrest-http.so";
    // Never unloaded: a thread of an abandoned exchange can still run in it.
    void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const make = module == nullptr ? nullptr : ::dlsym(module, httpModuleFunction);
    if (make == nullptr) {
        return {.problem = ::dlerror()};
    }
    const auto function = reinterpret_cast<decltype(&tallowcrest_make_http_exchange)>(make);
    return {.http = std::shared_ptr<HttpExchange>(function())};
}

}  // namespace tallowcrest
