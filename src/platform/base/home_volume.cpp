#include "platform/base/home_volume.h"

#include <sys/statvfs.h>

#include <utility>

#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

DiskSnapshot readVolumeOf(const std::string& directory) {
    struct statvfs volume {};
    if (::statvfs(directory.c_str(), &volume) != 0) {
        return {};
    }
    const double gigabytesPerBlock = static_cast<double>(volume.f_frsize) * gigabytesPerByte;
    return {static_cast<double>(volume.f_blocks) * gigabytesPerBlock,
            static_cast<double>(volume.f_bavail) * gigabytesPerBlock};
}

}  // namespace

PosixHomeVolume::PosixHomeVolume(std::string homeDirectory)
    : PosixHomeVolume([directory = std::move(homeDirectory)] { return readVolumeOf(directory); }) {}

PosixHomeVolume::PosixHomeVolume(ReadVolume readVolume) : readVolume_(std::move(readVolume)) {}

DiskSnapshot PosixHomeVolume::readDiskSnapshot() {
    const std::unique_lock reading(readLock_, std::try_to_lock);
    if (!reading.owns_lock()) {
        const std::lock_guard guard(latestLock_);
        return latest_;
    }
    const DiskSnapshot volume = readVolume_();
    const std::lock_guard guard(latestLock_);
    latest_ = volume;
    return volume;
}

}  // namespace tallowcrest
