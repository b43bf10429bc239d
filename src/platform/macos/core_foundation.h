#pragma once

namespace tallowcrest {

/// The functions of CoreFoundation that the program without a window needs, by their own names, and
/// what they take. They are looked up at run time: Apple gives the framework's header and what a
/// linker needs to Macs with its developer tools only, and this program is also compiled and linked
/// elsewhere.
struct CoreFoundation {
    using Object = const void*;
    using Index = long;
    using Boolean = unsigned char;

    static constexpr Index doubleNumber = 13;  ///< kCFNumberDoubleType

    Object (*CFURLCreateFromFileSystemRepresentation)(Object allocator, const unsigned char* path,
                                                      Index bytes, Boolean isFolder) = nullptr;
    Boolean (*CFURLCopyResourcePropertyForKey)(Object url, Object key, void* value,
                                               Object* error) = nullptr;
    unsigned long (*CFGetTypeID)(Object object) = nullptr;
    unsigned long (*CFNumberGetTypeID)() = nullptr;
    Boolean (*CFNumberGetValue)(Object number, Index type, void* value) = nullptr;
    void (*CFRelease)(Object object) = nullptr;
    const Object* kCFURLVolumeTotalCapacityKey = nullptr;
    const Object* kCFURLVolumeAvailableCapacityForImportantUsageKey = nullptr;
};

/// The framework, which stays loaded. Null when it or one of these is missing. Any thread.
const CoreFoundation* coreFoundation();

}  // namespace tallowcrest
