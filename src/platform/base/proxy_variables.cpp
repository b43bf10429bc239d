#include "platform/base/proxy_variables.h"

#include <cstdlib>
#include <initializer_list>
#include <mutex>

#include "platform/base/environment.h"

namespace tallowcrest {
namespace {

/// The value of the first of these variables that is set.
std::string firstVariable(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

}  // namespace

ProxyVariables proxyVariables() {
    const std::lock_guard guard(environmentLock());
    return {firstVariable({"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}),
            firstVariable({"no_proxy", "NO_PROXY"})};
}

}  // namespace tallowcrest
