#pragma once

#include <cstdint>
#include <functional>
#include <optional>

// The functions and constants of Apple's frameworks that this program uses outside of
// Objective-C++, by their own names, and what they take. They are looked up at run time: Apple
// gives the headers and what a linker needs to Macs with its developer tools only, and this program
// is also compiled and linked elsewhere.
namespace tallowcrest {

/// A reference of CoreFoundation, of any type.
using CFObject = const void*;

struct CoreFoundation {
    static constexpr const char* path =
        "/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation";

    using Index = long;
    using Boolean = unsigned char;
    using Encoding = std::uint32_t;

    static constexpr Index doubleNumber = 13;     ///< kCFNumberDoubleType
    static constexpr Encoding utf8 = 0x08000100;  ///< kCFStringEncodingUTF8

    CFObject (*CFURLCreateFromFileSystemRepresentation)(CFObject allocator,
                                                        const unsigned char* path, Index bytes,
                                                        Boolean isFolder) = nullptr;
    Boolean (*CFURLCopyResourcePropertyForKey)(CFObject url, CFObject key, void* value,
                                               CFObject* error) = nullptr;
    unsigned long (*CFGetTypeID)(CFObject object) = nullptr;
    unsigned long (*CFNumberGetTypeID)() = nullptr;
    Boolean (*CFNumberGetValue)(CFObject number, Index type, void* value) = nullptr;
    unsigned long (*CFStringGetTypeID)() = nullptr;
    CFObject (*CFStringCreateWithBytes)(CFObject allocator, const unsigned char* bytes, Index count,
                                        Encoding encoding, Boolean hasMark) = nullptr;
    Boolean (*CFStringGetCString)(CFObject string, char* buffer, Index size,
                                  Encoding encoding) = nullptr;
    CFObject (*CFDataCreateWithBytesNoCopy)(CFObject allocator, const unsigned char* bytes,
                                            Index count, CFObject deallocator) = nullptr;
    unsigned long (*CFDataGetTypeID)() = nullptr;
    const unsigned char* (*CFDataGetBytePtr)(CFObject data) = nullptr;
    Index (*CFDataGetLength)(CFObject data) = nullptr;
    CFObject (*CFDictionaryCreateMutable)(CFObject allocator, Index capacity,
                                          const void* keyCallBacks,
                                          const void* valueCallBacks) = nullptr;
    void (*CFDictionaryAddValue)(CFObject dictionary, CFObject key, CFObject value) = nullptr;
    CFObject (*CFBundleGetMainBundle)() = nullptr;
    CFObject (*CFBundleGetValueForInfoDictionaryKey)(CFObject bundle, CFObject key) = nullptr;
    void (*CFRelease)(CFObject object) = nullptr;

    // Tables of functions, by their address.
    const void* kCFTypeDictionaryKeyCallBacks = nullptr;
    const void* kCFTypeDictionaryValueCallBacks = nullptr;
    // Variables that hold an object.
    const CFObject* kCFAllocatorNull = nullptr;
    const CFObject* kCFBooleanTrue = nullptr;
    const CFObject* kCFURLVolumeTotalCapacityKey = nullptr;
    const CFObject* kCFURLVolumeAvailableCapacityForImportantUsageKey = nullptr;
};

struct SecurityFramework {
    static constexpr const char* path = "/System/Library/Frameworks/Security.framework/Security";

    using Status = std::int32_t;

    static constexpr Status success = 0;        ///< errSecSuccess
    static constexpr Status notFound = -25300;  ///< errSecItemNotFound

    Status (*SecItemCopyMatching)(CFObject query, CFObject* result) = nullptr;
    Status (*SecItemAdd)(CFObject attributes, CFObject* result) = nullptr;
    Status (*SecItemDelete)(CFObject query) = nullptr;

    const CFObject* kSecClass = nullptr;
    const CFObject* kSecClassGenericPassword = nullptr;
    const CFObject* kSecAttrService = nullptr;
    const CFObject* kSecAttrAccount = nullptr;
    const CFObject* kSecAttrAccessible = nullptr;
    const CFObject* kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly = nullptr;
    const CFObject* kSecReturnData = nullptr;
    const CFObject* kSecMatchLimit = nullptr;
    const CFObject* kSecMatchLimitOne = nullptr;
    const CFObject* kSecValueData = nullptr;
};

/// The frameworks, which stay loaded. Null when one or a part of it is missing. Any thread.
const CoreFoundation* coreFoundation();
const SecurityFramework* securityFramework();

/// The address of what a framework has under a name; null when it has nothing.
using FrameworkLookup = std::function<void*(const char* name)>;

/// The same from such a lookup. Absent when one is missing.
std::optional<CoreFoundation> coreFoundationFrom(const FrameworkLookup& lookup);
std::optional<SecurityFramework> securityFrameworkFrom(const FrameworkLookup& lookup);

}  // namespace tallowcrest
