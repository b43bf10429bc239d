#include <sys/sysmacros.h>

#include "platform/files/mount_info.h"
#include "platform/files/volume_of.h"

namespace tallowcrest {

std::optional<Volume> volumeOf(const std::string& path) {
    const auto found = mountedPath(path);
    if (!found) {
        return std::nullopt;
    }
    const std::uint64_t device = ::gnu_dev_makedev(found->deviceMajor, found->deviceMinor);
    return Volume{.device = device, .fileSystem = found->mountDevice.value_or(device)};
}

}  // namespace tallowcrest
