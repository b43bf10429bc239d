// What Apple's documentation says of the functions and constants of frameworks.h, written down a
// second time, in types of the language. Compiled by scripts/macos-check and by
// mac_frameworks_test.

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "platform/macos/frameworks.h"

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

/// Whether each of these members is of the type.
template <class Type, class Table, class... Members>
constexpr bool areOf(Members Table::*...) {
    return (std::is_same_v<Type, Members> && ...);
}

using CF = CoreFoundation;
using Object = const void*;
using Byte = unsigned char;

static_assert(areOf<unsigned long (*)()>(&CF::CFDataGetTypeID, &CF::CFNumberGetTypeID,
                                         &CF::CFStringGetTypeID));
static_assert(areOf<unsigned long (*)(Object)>(&CF::CFGetTypeID));
static_assert(areOf<void (*)(Object)>(&CF::CFRelease));
static_assert(areOf<Object (*)(Object, const Byte*, long, Byte)>(
    &CF::CFURLCreateFromFileSystemRepresentation));
static_assert(
    areOf<Byte (*)(Object, Object, void*, Object*)>(&CF::CFURLCopyResourcePropertyForKey));
static_assert(areOf<Byte (*)(Object, long, void*)>(&CF::CFNumberGetValue));
static_assert(areOf<Object (*)(Object, const Byte*, long, std::uint32_t, Byte)>(
    &CF::CFStringCreateWithBytes));
static_assert(areOf<Byte (*)(Object, char*, long, std::uint32_t)>(&CF::CFStringGetCString));
static_assert(
    areOf<Object (*)(Object, const Byte*, long, Object)>(&CF::CFDataCreateWithBytesNoCopy));
static_assert(areOf<const Byte* (*)(Object)>(&CF::CFDataGetBytePtr));
static_assert(areOf<long (*)(Object)>(&CF::CFDataGetLength));
static_assert(areOf<Object (*)(Object, long, Object, Object)>(&CF::CFDictionaryCreateMutable));
static_assert(areOf<void (*)(Object, Object, Object)>(&CF::CFDictionaryAddValue));
static_assert(areOf<Object (*)()>(&CF::CFBundleGetMainBundle));
static_assert(areOf<Object (*)(Object, Object)>(&CF::CFBundleGetValueForInfoDictionaryKey));
static_assert(areOf<Object>(&CF::kCFTypeDictionaryKeyCallBacks,
                            &CF::kCFTypeDictionaryValueCallBacks));
static_assert(areOf<const Object*>(&CF::kCFAllocatorNull, &CF::kCFBooleanTrue,
                                   &CF::kCFURLVolumeTotalCapacityKey,
                                   &CF::kCFURLVolumeAvailableCapacityForImportantUsageKey));

static_assert(sizeof(CF) == 23 * sizeof(Object), "each member is above");
static_assert(CF::path == "/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation"sv);
static_assert(CF::doubleNumber == 13);
static_assert(CF::utf8 == 0x08000100U);

using Sec = SecurityFramework;

static_assert(areOf<std::int32_t (*)(Object, Object*)>(&Sec::SecItemCopyMatching,
                                                       &Sec::SecItemAdd));
static_assert(areOf<std::int32_t (*)(Object)>(&Sec::SecItemDelete));
static_assert(areOf<const Object*>(
    &Sec::kSecClass, &Sec::kSecClassGenericPassword, &Sec::kSecAttrService, &Sec::kSecAttrAccount,
    &Sec::kSecAttrAccessible, &Sec::kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly,
    &Sec::kSecReturnData, &Sec::kSecMatchLimit, &Sec::kSecMatchLimitOne, &Sec::kSecValueData));
static_assert(sizeof(Sec) == 13 * sizeof(Object), "each member is above");
static_assert(Sec::path == "/System/Library/Frameworks/Security.framework/Security"sv);
static_assert(Sec::success == 0);
static_assert(Sec::notFound == -25300);

}  // namespace
}  // namespace tallowcrest
