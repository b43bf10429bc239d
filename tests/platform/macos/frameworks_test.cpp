#include "platform/macos/frameworks.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using testing::UnorderedElementsAreArray;

/// The names that `from` looks up, each of which is there unless it is `missing`.
template <class Table>
std::vector<std::string> namesOf(std::optional<Table> (*from)(const FrameworkLookup&),
                                 const std::string& missing, bool isComplete) {
    std::vector<std::string> names;
    const auto table = from([&](const char* name) {
        names.emplace_back(name);
        static int something = 0;
        return name == missing ? nullptr : static_cast<void*>(&something);
    });
    EXPECT_EQ(table.has_value(), isComplete) << missing;
    return names;
}

template <class Table>
void expectNames(std::optional<Table> (*from)(const FrameworkLookup&),
                 const std::vector<std::string>& names) {
    EXPECT_THAT(namesOf(from, "", true), UnorderedElementsAreArray(names));
    // Each member is a pointer, so none was forgotten.
    EXPECT_EQ(names.size(), sizeof(Table) / sizeof(void*));
    for (const std::string& name : names) {
        namesOf(from, name, false);
    }
}

TEST(MacFrameworks, AreLookedUpByTheNamesOfApplesHeaders) {
    expectNames(coreFoundationFrom, {"CFBundleGetMainBundle",
                                     "CFBundleGetValueForInfoDictionaryKey",
                                     "CFDataCreateWithBytesNoCopy",
                                     "CFDataGetBytePtr",
                                     "CFDataGetLength",
                                     "CFDataGetTypeID",
                                     "CFDictionaryAddValue",
                                     "CFDictionaryCreateMutable",
                                     "CFGetTypeID",
                                     "CFNumberGetTypeID",
                                     "CFNumberGetValue",
                                     "CFRelease",
                                     "CFStringCreateWithBytes",
                                     "CFStringGetCString",
                                     "CFStringGetTypeID",
                                     "CFURLCopyResourcePropertyForKey",
                                     "CFURLCreateFromFileSystemRepresentation",
                                     "kCFAllocatorNull",
                                     "kCFBooleanTrue",
                                     "kCFTypeDictionaryKeyCallBacks",
                                     "kCFTypeDictionaryValueCallBacks",
                                     "kCFURLVolumeAvailableCapacityForImportantUsageKey",
                                     "kCFURLVolumeTotalCapacityKey"});
    expectNames(securityFrameworkFrom,
                {"SecItemAdd", "SecItemCopyMatching", "SecItemDelete", "kSecAttrAccessible",
                 "kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly", "kSecAttrAccount",
                 "kSecAttrService", "kSecClass", "kSecClassGenericPassword", "kSecMatchLimit",
                 "kSecMatchLimitOne", "kSecReturnData", "kSecValueData"});
}

/// Whether each of these members is of the type.
template <class Type, class Table, class... Members>
constexpr bool areOf(Members Table::*...) {
    return (std::is_same_v<Type, Members> && ...);
}

// What Apple's documentation says of them, written down a second time, in types of the language.
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

using Sec = SecurityFramework;

static_assert(areOf<std::int32_t (*)(Object, Object*)>(&Sec::SecItemCopyMatching,
                                                       &Sec::SecItemAdd));
static_assert(areOf<std::int32_t (*)(Object)>(&Sec::SecItemDelete));
static_assert(areOf<const Object*>(
    &Sec::kSecClass, &Sec::kSecClassGenericPassword, &Sec::kSecAttrService, &Sec::kSecAttrAccount,
    &Sec::kSecAttrAccessible, &Sec::kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly,
    &Sec::kSecReturnData, &Sec::kSecMatchLimit, &Sec::kSecMatchLimitOne, &Sec::kSecValueData));

TEST(MacFrameworks, HaveThePlacesAndConstantsOfApplesDocumentation) {
    const std::string frameworks = "/System/Library/Frameworks/";
    EXPECT_EQ(CF::path, frameworks + "CoreFoundation.framework/CoreFoundation");
    EXPECT_EQ(Sec::path, frameworks + "Security.framework/Security");
    EXPECT_EQ(CF::doubleNumber, 13);
    EXPECT_EQ(CF::utf8, 0x08000100U);
    EXPECT_EQ(Sec::success, 0);
    EXPECT_EQ(Sec::notFound, -25300);
}

TEST(MacFrameworks, AreAbsentWhereThereAreNone) {
    EXPECT_EQ(coreFoundation(), nullptr);
    EXPECT_EQ(securityFramework(), nullptr);
}

}  // namespace
}  // namespace tallowcrest
