#include "platform/macos/core_foundation.h"

#include <dlfcn.h>

#include <optional>

namespace tallowcrest {
namespace {

std::optional<CoreFoundation> loaded() {
    void* const framework =
        ::dlopen("/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation",
                 RTLD_NOW | RTLD_LOCAL);
    if (framework == nullptr) {
        return std::nullopt;
    }
    bool isComplete = true;
    const auto find = [&]<class Pointer>(Pointer& pointer, const char* name) {
        pointer = reinterpret_cast<Pointer>(::dlsym(framework, name));
        isComplete = isComplete && pointer != nullptr;
    };
    CoreFoundation found;
    find(found.CFURLCreateFromFileSystemRepresentation, "CFURLCreateFromFileSystemRepresentation");
    find(found.CFURLCopyResourcePropertyForKey, "CFURLCopyResourcePropertyForKey");
    find(found.CFGetTypeID, "CFGetTypeID");
    find(found.CFNumberGetTypeID, "CFNumberGetTypeID");
    find(found.CFNumberGetValue, "CFNumberGetValue");
    find(found.CFRelease, "CFRelease");
    find(found.kCFURLVolumeTotalCapacityKey, "kCFURLVolumeTotalCapacityKey");
    find(found.kCFURLVolumeAvailableCapacityForImportantUsageKey,
         "kCFURLVolumeAvailableCapacityForImportantUsageKey");
    return isComplete ? std::optional(found) : std::nullopt;
}

}  // namespace

const CoreFoundation* coreFoundation() {
    static const std::optional<CoreFoundation> framework = loaded();
    return framework ? &*framework : nullptr;
}

}  // namespace tallowcrest
