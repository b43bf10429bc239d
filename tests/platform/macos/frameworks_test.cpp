#include "platform/macos/frameworks.h"

#include <string>
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

TEST(MacFrameworks, AreAbsentWhereThereAreNone) {
    EXPECT_EQ(coreFoundation(), nullptr);
    EXPECT_EQ(securityFramework(), nullptr);
}

}  // namespace
}  // namespace tallowcrest
