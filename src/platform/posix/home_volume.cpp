#include "platform/posix/home_volume.h"

#include <sys/statvfs.h>

#include "sampling/binary_units.h"

namespace tallowcrest {

DiskSnapshot PosixHomeVolume::readDiskSnapshot() {
    struct statvfs volume {};
    if (::statvfs(homeDirectory_.c_str(), &volume) != 0) {
        return {};
    }
    const double gigabytesPerBlock = static_cast<double>(volume.f_frsize) * gigabytesPerByte;
    return {static_cast<double>(volume.f_blocks) * gigabytesPerBlock,
            static_cast<double>(volume.f_bavail) * gigabytesPerBlock};
}

}  // namespace tallowcrest
