#include "platform/files/device_of.h"

#include <sys/stat.h>

namespace tallowcrest {

std::optional<std::uint64_t> deviceOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_dev);
}

}  // namespace tallowcrest
