#include "platform/base/environment.h"

#include <cstdlib>

namespace tallowcrest {

std::mutex& environmentLock() {
    static std::mutex lock;
    return lock;
}

std::string environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string startupActivationToken() {
    const std::string token = environmentVariable(activationTokenVariable);
    return token.empty() ? environmentVariable(startupIDVariable) : token;
}

}  // namespace tallowcrest
