#include "platform/settings/settings_problem.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

namespace problem = settings_problem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

/// About what the window shows of a sentence that is too long for it.
constexpr std::size_t shownAtLeast = 90;

TEST(SettingsProblem, BeginsWithTheConsequenceAndEndsWithThePlace) {
    const std::string run = "last only for this run";
    const std::string detail = "No space left on device";
    const std::string file = "/home/owner/.local/share/tallowcrest/settings.sqlite";
    const std::string name = "settings.sqlite.damaged-20260509-061320";
    struct Case {
        std::string_view sentence;
        std::vector<std::string> consequences;
        std::vector<std::string> details;
    };
    const std::vector<Case> cases{
        {problem::folderCannotBeMade, {"changes", run}, {detail}},
        {problem::fileCannotBeMade, {"changes", run}, {detail}},
        {problem::locked, {"locked", "defaults", "changes", run}, {}},
        {problem::newer, {"newer version", "defaults", "changes", run}, {}},
        {problem::canOnlyBeRead, {"read but not changed", run}, {detail}},
        {problem::cannotBeRead, {"cannot be read", "defaults", run}, {detail}},
        {problem::damaged, {"damaged", "defaults"}, {name}},
        {problem::foreign, {"no settings of ours", "defaults"}, {name}},
        {problem::cannotBePutAside, {"damaged", "defaults", run}, {detail}},
        {problem::damagedLeft, {"cannot be read", "defaults"}, {}},
        {problem::unreadableKeys, {"Some settings cannot be read", "defaults"}, {detail}},
        {problem::unreadableKeysKept, {"Some settings cannot be read", "defaults"}, {detail, name}},
        {problem::unreadableKeysLeft, {"defaults", "only for this run"}, {detail}},
        {problem::cannotBeSaved, {"cannot be saved", "only for this run"}, {detail}},
    };
    for (const Case& c : cases) {
        const std::string text = problem::describe(c.sentence, file, detail, "/aside/" + name);
        for (const std::string& consequence : c.consequences) {
            EXPECT_THAT(text.substr(0, shownAtLeast), HasSubstr(consequence));
        }
        for (const std::string& part : c.details) {
            EXPECT_THAT(text, HasSubstr(part));
        }
        EXPECT_THAT(text, EndsWith(", " + file + "."));
        EXPECT_THAT(text, Not(HasSubstr("\n")));
    }
    EXPECT_THAT(problem::describe(problem::noHomeFolder, {}).substr(0, shownAtLeast),
                HasSubstr(run));
}

TEST(SettingsProblem, IsValidUTF8WhateverThePlaceAndTheReason) {
    EXPECT_THAT(problem::describe(problem::cannotBeRead, "/home/\xFF/settings", "\xFE"),
                EndsWith("\xEF\xBF\xBD, /home/\xEF\xBF\xBD/settings."));
}

}  // namespace
}  // namespace tallowcrest
