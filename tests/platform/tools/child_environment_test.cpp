#include "platform/tools/child_environment.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

std::vector<std::string> copyOf(std::vector<const char*> variables) {
    variables.push_back(nullptr);
    const ChildEnvironment environment(variables.data());
    std::vector<std::string> result;
    for (char* const* each = environment.variables(); *each != nullptr; ++each) {
        result.emplace_back(*each);
    }
    return result;
}

TEST(ChildEnvironment, LeavesOutTheActivationToken) {
    EXPECT_THAT(copyOf({"XDG_ACTIVATION_TOKEN=token", "PATH=/bin", "DESKTOP_STARTUP_ID=token",
                        "HOME=/home/owner"}),
                ElementsAre("PATH=/bin", "HOME=/home/owner"));
    EXPECT_THAT(copyOf({"XDG_ACTIVATION_TOKEN=", "DESKTOP_STARTUP_ID="}), IsEmpty());
    EXPECT_THAT(copyOf({"PATH=/bin", "XDG_ACTIVATION_TOKEN=first", "XDG_ACTIVATION_TOKEN=second"}),
                ElementsAre("PATH=/bin"));
}

TEST(ChildEnvironment, KeepsVariablesWithSimilarNames) {
    const std::vector<const char*> alike{"XDG_ACTIVATION_TOKENS=a",   "XDG_ACTIVATION_TOKEN",
                                         "MY_XDG_ACTIVATION_TOKEN=a", "xdg_activation_token=a",
                                         "XDG_ACTIVATION=a",          "DESKTOP_STARTUP_IDS=a",
                                         "DESKTOP_STARTUP_ID",        "DESKTOP_STARTUP=a",
                                         "A=XDG_ACTIVATION_TOKEN=a",  "=DESKTOP_STARTUP_ID=a"};
    EXPECT_THAT(copyOf(alike), ElementsAreArray(alike));
}

TEST(ChildEnvironment, KeepsOtherVariablesUnchanged) {
    const std::vector<const char*> rest{"EMPTY=",  "A=b=c", "TEXT=two\nlines, \xC3\xA9 and \xFF",
                                        "A=again", "",      "NOTHING"};
    EXPECT_THAT(copyOf(rest), ElementsAreArray(rest));
}

TEST(ChildEnvironment, MayBeEmpty) {
    EXPECT_THAT(copyOf({}), IsEmpty());
    EXPECT_EQ(*ChildEnvironment(nullptr).variables(), nullptr);
}

TEST(ChildEnvironment, IsACopy) {
    std::string path = "PATH=/bin";
    const char* variables[] = {path.c_str(), nullptr};
    const ChildEnvironment environment(variables);
    path.replace(0, path.size(), "PATH=/etc");
    EXPECT_STREQ(environment.variables()[0], "PATH=/bin");
    variables[0] = nullptr;
    EXPECT_STREQ(environment.variables()[0], "PATH=/bin");
}

}  // namespace
}  // namespace tallowcrest
