#pragma once

#include <cstdint>

using Boolean = unsigned char;
using UInt8 = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFTypeRef = const void*;
using CFAllocatorRef = const struct CFAllocator*;
using CFBundleRef = struct CFBundle*;
using CFBooleanRef = const struct CFBoolean*;
using CFDataRef = const struct CFData*;
using CFDictionaryRef = const struct CFDictionary*;
using CFMutableDictionaryRef = struct CFDictionary*;
using CFErrorRef = struct CFError*;
using CFNumberRef = const struct CFNumber*;
using CFStringRef = const struct CFString*;
using CFStringEncoding = std::uint32_t;
using CFURLRef = const struct CFURL*;
struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;
enum CFNumberType : CFIndex { kCFNumberDoubleType = 13 };
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFAllocatorRef kCFAllocatorNull;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
extern const CFStringRef kCFURLVolumeTotalCapacityKey;
extern const CFStringRef kCFURLVolumeAvailableCapacityForImportantUsageKey;

CFBundleRef CFBundleGetMainBundle();
CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                      CFAllocatorRef bytesDeallocator);
const UInt8* CFDataGetBytePtr(CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);
CFTypeID CFDataGetTypeID();
void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFNumberGetTypeID();
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
Boolean CFStringGetCString(CFStringRef text, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
CFStringRef CFURLCopyPath(CFURLRef url);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory);
Boolean CFURLCopyResourcePropertyForKey(CFURLRef url, CFStringRef key, void* value,
                                        CFErrorRef* error);
}
