#include <sys/stat.h>

#include <cstdint>

#include "platform/files/volume_of.h"

namespace tallowcrest {

std::optional<Volume> volumeOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    const auto device = static_cast<std::uint64_t>(status.st_dev);
    return Volume{device, device};
}

}  // namespace tallowcrest
