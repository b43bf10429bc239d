#include "platform/macos/home_volume_macos.h"

#include "platform/macos/frameworks.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

/// 0 when the value is not available.
double readCapacityGB(const CoreFoundation& framework, CFObject folder, CFObject key) {
    CFObject value = nullptr;
    if (framework.CFURLCopyResourcePropertyForKey(folder, key, &value, nullptr) == 0 ||
        value == nullptr) {
        return 0.0;
    }
    double bytes = 0.0;
    if (framework.CFGetTypeID(value) == framework.CFNumberGetTypeID()) {
        framework.CFNumberGetValue(value, CoreFoundation::doubleNumber, &bytes);
    }
    framework.CFRelease(value);
    return bytes * gigabytesPerByte;
}

}  // namespace

DiskSnapshot MacHomeVolume::readDiskSnapshot() {
    const CoreFoundation* const framework = coreFoundation();
    if (framework == nullptr) {
        return {};
    }
    // A new URL each time, because a URL object caches the values read through it.
    const CFObject folder = framework->CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const unsigned char*>(homeDirectory_.data()),
        static_cast<CoreFoundation::Index>(homeDirectory_.size()), 1);
    if (folder == nullptr) {
        return {};
    }
    DiskSnapshot disk;
    disk.totalGB = readCapacityGB(*framework, folder, *framework->kCFURLVolumeTotalCapacityKey);
    disk.freeGB = readCapacityGB(*framework, folder,
                                 *framework->kCFURLVolumeAvailableCapacityForImportantUsageKey);
    framework->CFRelease(folder);
    return disk;
}

}  // namespace tallowcrest
