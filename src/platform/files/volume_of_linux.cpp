#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>

#include "platform/files/mount_info.h"
#include "platform/files/volume_of.h"

namespace tallowcrest {

std::optional<Volume> volumeOf(const std::string& path) {
    struct statx found {};
    if (::statx(AT_FDCWD, path.c_str(), AT_NO_AUTOMOUNT, STATX_TYPE | STATX_MNT_ID, &found) != 0) {
        return std::nullopt;
    }
    Volume volume;
    volume.device = ::gnu_dev_makedev(found.stx_dev_major, found.stx_dev_minor);
    volume.fileSystem = volume.device;
    if ((found.stx_mask & STATX_MNT_ID) != 0) {
        std::ifstream mounts("/proc/self/mountinfo");
        for (std::string line; std::getline(mounts, line);) {
            if (const auto device = deviceOfMount(line, found.stx_mnt_id)) {
                volume.fileSystem = *device;
                break;
            }
        }
    }
    return volume;
}

}  // namespace tallowcrest
