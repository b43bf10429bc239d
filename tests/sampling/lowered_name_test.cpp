#include "sampling/lowered_name.h"

#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(LoweredName, IsSearchedInLowerCase) {
    struct Case {
        std::string name;
        bool contains;
        bool equals;
    };
    LoweredName lowered;
    for (const Case& c :
         {Case{"docker", true, true}, Case{"DOCKER", true, true},
          Case{"com.Docker.backend", true, false}, Case{"rekcod", false, false},
          Case{"docke", false, false}, Case{"", false, false},
          Case{"DoC\u212AeR", true, true},  // the kelvin sign is a k in lower case
          Case{"d\u00D6cker", false, false}, Case{"\xFF docker\xE2\x84", true, false},
          Case{"dock\xE2\x84", false, false}, Case{std::string("do\0cker", 7), false, false}}) {
        lowered.assign(c.name);
        EXPECT_EQ(lowered.contains(NameNeedle("docker")), c.contains) << c.name;
        EXPECT_EQ(lowered.equals(NameNeedle("docker")), c.equals) << c.name;
    }
}

TEST(LoweredName, NeedlesMayContainMoreThanLetters) {
    LoweredName lowered;
    lowered.assign("Google Chrome Helper (GPU)");
    EXPECT_TRUE(lowered.contains(NameNeedle("google chrome")));
    EXPECT_TRUE(lowered.contains(NameNeedle("(gpu)")));
    EXPECT_TRUE(lowered.contains(NameNeedle("")));
    EXPECT_FALSE(lowered.contains(NameNeedle("google  chrome")));
    EXPECT_FALSE(lowered.contains(NameNeedle("-")));
}

TEST(LoweredName, AssigningReplacesThePreviousName) {
    LoweredName lowered;
    lowered.assign("docker-containerd");
    lowered.assign("arc");
    EXPECT_FALSE(lowered.contains(NameNeedle("docker")));
    EXPECT_TRUE(lowered.equals(NameNeedle("arc")));
}

}  // namespace
}  // namespace tallowcrest
