#include "platform/base/make_directories.h"

#include <sys/stat.h>

#include <cerrno>

namespace tallowcrest {

int makeDirectories(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), S_IRWXU) == 0) {
            // Best effort: not every file system has permissions.
            static_cast<void>(::chmod(part.c_str(), S_IRWXU));
        } else {
            // A read-only file system gives an error other than EEXIST for an existing directory.
            struct stat status {};
            const int error = errno;
            if (::stat(part.c_str(), &status) != 0) {
                return error;
            }
        }
        if (end == std::string::npos) {
            return 0;
        }
    }
}

}  // namespace tallowcrest
