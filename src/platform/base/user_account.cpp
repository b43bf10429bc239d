#include "platform/base/user_account.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace tallowcrest {

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

}  // namespace tallowcrest
