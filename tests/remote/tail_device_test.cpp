#include "remote/tail_device.h"

#include <gtest/gtest.h>

#include "core/locale.h"

namespace tallowcrest {
namespace {

TEST(TailDevice, HasAPathByAnyOfThreeFacts) {
    EXPECT_FALSE(hasPath({}));
    EXPECT_FALSE(hasPath({.online = true, .active = true}));
    EXPECT_TRUE(hasPath({.inMagicSock = true}));
    EXPECT_TRUE(hasPath({.currentAddress = "192.0.2.1:41641"}));
    EXPECT_TRUE(hasPath({.relay = "fra"}));
}

TEST(TailDevice, IsAMacByItsSystemWhileItIsOnline) {
    const PlainLocale locale;
    for (const char* os : {"macOS", "MACOS", "mac", "Some Mac"}) {
        EXPECT_TRUE(isRemoteMac({.online = true, .os = os}, locale)) << os;
        EXPECT_FALSE(isRemoteMac({.online = false, .os = os}, locale)) << os;
    }
    for (const char* os : {"", "unknown", "linux", "iOS", "ma c"}) {
        EXPECT_FALSE(isRemoteMac({.online = true, .os = os}, locale)) << os;
    }
}

TEST(TailDevice, IsALinuxMachineByItsSystemWhileItIsOnline) {
    const PlainLocale locale;
    for (const char* os : {"linux", "Linux", "GNU/LINUX"}) {
        EXPECT_TRUE(isRemoteLinux({.online = true, .os = os}, locale)) << os;
        EXPECT_FALSE(isRemoteLinux({.online = false, .os = os}, locale)) << os;
    }
    for (const char* os : {"", "unknown", "macOS", "lin ux", "android"}) {
        EXPECT_FALSE(isRemoteLinux({.online = true, .os = os}, locale)) << os;
    }
}

}  // namespace
}  // namespace tallowcrest
