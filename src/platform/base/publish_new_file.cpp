#include "platform/base/publish_new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

int publishNewFile(int folder, const std::string& temporary, const std::string& name) {
    if (::linkat(folder, temporary.c_str(), folder, name.c_str(), 0) == 0) {
        ::unlinkat(folder, temporary.c_str(), 0);
        return 0;
    }
    const int error = errno;
    const bool hasNoHardLinks = error == EPERM || error == EOPNOTSUPP || error == ENOSYS;
    if (!hasNoHardLinks) {
        return error;
    }
    // Some file systems, such as those of memory cards, have no hard links, and renaming replaces
    // an existing file. So the name is reserved first.
    const UniqueFD reserved(
        ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!reserved.valid()) {
        return errno;
    }
    if (::renameat(folder, temporary.c_str(), folder, name.c_str()) != 0) {
        const int renameError = errno;
        ::unlinkat(folder, name.c_str(), 0);
        return renameError;
    }
    return 0;
}

}  // namespace tallowcrest
