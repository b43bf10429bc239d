#include "platform/macos/home_volume_macos.h"

#include <CoreFoundation/CoreFoundation.h>

#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

/// 0 when the value is not available.
double readCapacityGB(CFURLRef directory, CFStringRef key) {
    CFTypeRef value = nullptr;
    if (!CFURLCopyResourcePropertyForKey(directory, key, &value, nullptr) || value == nullptr) {
        return 0.0;
    }
    double bytes = 0.0;
    if (CFGetTypeID(value) == CFNumberGetTypeID()) {
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &bytes);
    }
    CFRelease(value);
    return bytes * gigabytesPerByte;
}

}  // namespace

DiskSnapshot MacHomeVolume::readDiskSnapshot() {
    // A new URL each time, because a URL object caches the values read through it.
    const CFURLRef directory = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(homeDirectory_.data()),
        static_cast<CFIndex>(homeDirectory_.size()), true);
    if (directory == nullptr) {
        return {};
    }
    DiskSnapshot disk;
    disk.totalGB = readCapacityGB(directory, kCFURLVolumeTotalCapacityKey);
    disk.freeGB = readCapacityGB(directory, kCFURLVolumeAvailableCapacityForImportantUsageKey);
    CFRelease(directory);
    return disk;
}

}  // namespace tallowcrest
