#include "platform/base/environment.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace tallowcrest {

std::mutex& environmentLock() {
    static std::mutex lock;
    return lock;
}

void forbidSecretsFile() {
    unsetenv(secretsFileVariable);
}

std::string environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string startupActivationToken() {
    const std::string token = environmentVariable(activationTokenVariable);
    return token.empty() ? environmentVariable(startupIDVariable) : token;
}

UserAccount userAccount() {
    UserAccount account;
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    constexpr std::size_t largestBuffer = 1 << 20;
    while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < largestBuffer) {
        buffer.resize(buffer.size() * 2);
    }
    if (found != nullptr) {
        account.name = found->pw_name;
        account.homeDirectory = found->pw_dir;
    }
    // $HOME has precedence, as it does for the other programs of the session.
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        account.homeDirectory = home;
    }
    return account;
}

std::string baseFolder(const char* variable, const std::string& usual) {
    if (std::string folder = environmentVariable(variable); folder.starts_with('/')) {
        return folder;
    }
    const std::string home = userAccount().homeDirectory;
    return home.starts_with('/') ? home + '/' + usual : std::string();
}

}  // namespace tallowcrest
