#include "platform/files/rotational_disk.h"

#include <string>
#include <system_error>

#include "platform/base/regular_file.h"

namespace tallowcrest {

bool isRotationalDisk(const std::filesystem::path& sysfs, unsigned major, unsigned minor) {
    std::error_code error;
    const std::filesystem::path device = std::filesystem::canonical(
        sysfs / "dev/block" / (std::to_string(major) + ':' + std::to_string(minor)), error);
    // The disk of a virtual machine says that it is rotational, whatever it is made of.
    if (error || device.native().find("/virtio") != std::string::npos) {
        return false;
    }
    // The folder of a partition is inside that of its disk, which has the queue.
    for (const std::filesystem::path& disk : {device, device.parent_path()}) {
        const std::string answer = readRegularFile(disk / "queue/rotational");
        if (!answer.empty()) {
            return answer.starts_with('1');
        }
    }
    return false;
}

}  // namespace tallowcrest
