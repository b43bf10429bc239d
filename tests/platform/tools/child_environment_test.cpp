#include "platform/tools/child_environment.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* plainNumbers = "LC_NUMERIC=C";

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
                ElementsAre("PATH=/bin", "HOME=/home/owner", plainNumbers));
    EXPECT_THAT(copyOf({"XDG_ACTIVATION_TOKEN=", "DESKTOP_STARTUP_ID="}),
                ElementsAre(plainNumbers));
    EXPECT_THAT(copyOf({"PATH=/bin", "XDG_ACTIVATION_TOKEN=first", "XDG_ACTIVATION_TOKEN=second"}),
                ElementsAre("PATH=/bin", plainNumbers));
}

TEST(ChildEnvironment, KeepsVariablesWithSimilarNames) {
    std::vector<const char*> alike{"XDG_ACTIVATION_TOKENS=a",   "XDG_ACTIVATION_TOKEN",
                                   "MY_XDG_ACTIVATION_TOKEN=a", "xdg_activation_token=a",
                                   "XDG_ACTIVATION=a",          "DESKTOP_STARTUP_IDS=a",
                                   "DESKTOP_STARTUP_ID",        "DESKTOP_STARTUP=a",
                                   "A=XDG_ACTIVATION_TOKEN=a",  "=DESKTOP_STARTUP_ID=a"};
    const std::vector<std::string> copied = copyOf(alike);
    alike.push_back(plainNumbers);
    EXPECT_THAT(copied, ElementsAreArray(alike));
}

TEST(ChildEnvironment, KeepsOtherVariablesUnchanged) {
    std::vector<const char*> rest{"EMPTY=",  "A=b=c", "TEXT=two\nlines, \xC3\xA9 and \xFF",
                                  "A=again", "",      "NOTHING"};
    const std::vector<std::string> copied = copyOf(rest);
    rest.push_back(plainNumbers);
    EXPECT_THAT(copied, ElementsAreArray(rest));
}

TEST(ChildEnvironment, MayBeEmpty) {
    EXPECT_THAT(copyOf({}), ElementsAre(plainNumbers));
    const ChildEnvironment none(nullptr);
    EXPECT_STREQ(none.variables()[0], plainNumbers);
    EXPECT_EQ(none.variables()[1], nullptr);
}

TEST(ChildEnvironment, HasPlainNumbersInTheLanguageOfTheOwner) {
    EXPECT_THAT(copyOf({"LANG=de_DE.UTF-8", "LC_NUMERIC=fr_FR.UTF-8", "LC_TIME=fr_FR.UTF-8"}),
                ElementsAre("LANG=de_DE.UTF-8", "LC_TIME=fr_FR.UTF-8", plainNumbers));
    EXPECT_THAT(copyOf({"LANG=en_US.UTF-8", "LC_TIME=fr_FR.UTF-8", "LC_ALL=de_DE.UTF-8", "A=b"}),
                ElementsAre("A=b", "LANG=de_DE.UTF-8", plainNumbers));
    EXPECT_THAT(copyOf({"LC_ALL=", "LC_NUMERIC=de_DE.UTF-8", "LC_ALL"}),
                ElementsAre("LC_ALL=", "LC_ALL", plainNumbers));
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
