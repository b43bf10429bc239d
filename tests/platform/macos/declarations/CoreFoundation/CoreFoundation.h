#pragma once

#include <cstdint>

using Boolean = unsigned char;
using UInt8 = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFTypeRef = const void*;
using CFAllocatorRef = const struct CFAllocator*;
using CFErrorRef = struct CFError*;
using CFNumberRef = const struct CFNumber*;
using CFStringRef = const struct CFString*;
using CFURLRef = const struct CFURL*;
enum CFNumberType : CFIndex { kCFNumberDoubleType = 13 };

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFStringRef kCFURLVolumeTotalCapacityKey;
extern const CFStringRef kCFURLVolumeAvailableCapacityForImportantUsageKey;

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFNumberGetTypeID();
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory);
Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key, void* value,
                                        CFErrorRef* error);
}
