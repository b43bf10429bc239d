#include "platform/instance/instance_place.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include <gmock/gmock.h>

#include "platform/instance/instance_guard.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::EndsWith;
using namespace std::string_literals;

class InstancePlaceTest : public testing::Test {
protected:
    const TemporaryFolder folder;
};

TEST_F(InstancePlaceTest, IsInTheRuntimeDirectoryAndNamedAfterTheDataDirectory) {
    const std::string runtime = folder.path("run");
    ASSERT_EQ(::mkdir(runtime.c_str(), 0700), 0);
    InstanceEnvironment environment{runtime, folder.path("data"), "here"};
    const InstancePlace one = instancePlace(environment);
    EXPECT_EQ(one.directory, runtime + "/tallowcrest");
    // Another machine has another runtime directory, so the name need not differ.
    environment.machine = "there";
    EXPECT_EQ(instancePlace(environment).name, one.name);
    environment.dataDirectory = folder.path("other");
    EXPECT_NE(instancePlace(environment).name, one.name);
    // A link to the first directory.
    ASSERT_EQ(::mkdir(folder.path("data").c_str(), 0700), 0);
    ASSERT_EQ(::symlink(folder.path("data").c_str(), folder.path("link").c_str()), 0);
    environment.dataDirectory = folder.path("link");
    EXPECT_EQ(instancePlace(environment).name, one.name);
}

TEST_F(InstancePlaceTest, IsInTheDataDirectoryWithoutAnOwnRuntimeDirectory) {
    for (const std::string& runtime : {std::string(), std::string("run/user"),
                                       folder.path("missing"), folder.file("file", "", 0600)}) {
        const InstancePlace here = instancePlace({runtime, "/data", "here"});
        EXPECT_EQ(here.directory, "/data") << runtime;
        EXPECT_NE(here.name, instancePlace({runtime, "/data", "there"}).name);
    }
    EXPECT_EQ(instancePlace({"", "", "here"}).directory, "");
}

TEST_F(InstancePlaceTest, TellsMachinesApartByEachByteOfTheirIdentity) {
    const std::string name = instancePlace({"", "/data", "\0\xFE\1"s}).name;
    EXPECT_EQ(instancePlace({"", "/data", "\0\xFE\1"s}).name, name);
    EXPECT_NE(instancePlace({"", "/data", "\0\xFE\2"s}).name, name);
}

TEST_F(InstancePlaceTest, KnowsThisMachineAgain) {
    const InstanceEnvironment environment = instanceEnvironment("/data");
    EXPECT_NE(environment.machine, "");
    EXPECT_EQ(instanceEnvironment("/data").machine, environment.machine);
}

TEST_F(InstancePlaceTest, UsesTheUsualRuntimeDirectoryOnlyIfItIsPrivate) {
    const std::string usual = folder.path("usual");
    EXPECT_EQ(instancePlace({"", "/data", "here", usual}).directory, "/data") << "not there";
    ASSERT_EQ(::mkdir(usual.c_str(), 0700), 0);
    for (const mode_t mode : {0755U, 0770U, 0701U, 01777U}) {
        ASSERT_EQ(::chmod(usual.c_str(), mode), 0);
        EXPECT_EQ(instancePlace({"", "/data", "here", usual}).directory, "/data") << mode;
    }
    ASSERT_EQ(::chmod(usual.c_str(), 0700), 0);
    EXPECT_EQ(instancePlace({"", "/data", "here", usual}).directory, usual + "/tallowcrest");
    if (::chown(usual.c_str(), ::geteuid() + 1, static_cast<gid_t>(-1)) == 0) {
        EXPECT_EQ(instancePlace({"", "/data", "here", usual}).directory, "/data") << "another's";
    }
}

TEST_F(InstancePlaceTest, DoesNotUseAnotherUsersRuntimeDirectory) {
    const std::string foreign = folder.path("foreign");
    ASSERT_EQ(::mkdir(foreign.c_str(), 0700), 0);
    if (::chown(foreign.c_str(), ::geteuid() + 1, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "only the superuser can give a directory away";
    }
    EXPECT_EQ(instancePlace({foreign, "/data", "here"}).directory, "/data");
    EXPECT_THAT(startInstance({foreign, "window-test"}, {}).message,
                EndsWith("belongs to another user"));
}

}  // namespace
}  // namespace tallowcrest
