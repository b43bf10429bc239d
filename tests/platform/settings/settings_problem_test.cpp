#include "platform/settings/settings_problem.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

namespace told = settings_problem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

/// About what the window shows of a sentence that is too long for it.
constexpr std::size_t shownAtLeast = 90;

struct Sentence {
    std::string text;
    std::vector<std::string> consequences;
    std::vector<std::string> details;
};

const std::filesystem::path file = "/home/owner/.local/share/tallowcrest/settings.sqlite";
const std::filesystem::path aside = file.string() + ".damaged-20260509-061320";
const std::vector<std::string_view> twoKeys{"Tallowcrest.history", "Tallowcrest.sshUsername"};

std::vector<Sentence> sentences() {
    const std::string run = "last only for this run";
    const std::string reason = "No space left on device";
    const std::string name = aside.filename();
    const std::string keys = "Tallowcrest.history, Tallowcrest.sshUsername";
    return {
        {told::folderCannotBeMade(file, reason), {"changes", run}, {reason}},
        {told::fileCannotBeMade(file, reason), {"changes", run}, {reason}},
        {told::locked(file), {"locked", "defaults", "changes", run}, {}},
        {told::newer(file), {"newer version", "defaults", "changes", run}, {}},
        {told::canOnlyBeRead(file, reason), {"read but not changed", run}, {reason}},
        {told::cannotBeRead(file, reason), {"cannot be read", "defaults", run}, {reason}},
        {told::damaged(file, aside), {"damaged", "defaults"}, {name}},
        {told::notOurs(file, aside), {"no settings of ours", "defaults"}, {name}},
        {told::damagedInPlace(file, reason), {"damaged", "defaults", run}, {reason}},
        {told::damagedAndLeft(file), {"cannot be read", "defaults"}, {}},
        {told::latestChangesLost(file, aside), {"latest", "cannot be read", "older"}, {name}},
        {told::latestChangesUnreadable(file), {"latest", "cannot be read", "older"}, {}},
        {told::unreadableKeys(file, twoKeys), {"no sense", "defaults"}, {keys}},
        {told::unreadableKeysKept(file, twoKeys, aside), {"no sense", "defaults"}, {keys, name}},
        {told::unreadableKeysLeft(file, twoKeys), {"defaults", "only for this run"}, {keys}},
        {told::cannotBeSaved(file, reason), {"cannot be saved", "only for this run"}, {reason}},
    };
}

TEST(SettingsProblem, BeginsWithTheConsequenceAndEndsWithThePlace) {
    for (const Sentence& sentence : sentences()) {
        const std::string beginning = sentence.text.substr(0, shownAtLeast);
        for (const std::string& consequence : sentence.consequences) {
            EXPECT_THAT(beginning, HasSubstr(consequence));
        }
        for (const std::string& detail : sentence.details) {
            EXPECT_THAT(sentence.text, HasSubstr(detail));
        }
        EXPECT_THAT(sentence.text, EndsWith(", " + file.string() + "."));
        EXPECT_THAT(sentence.text, Not(HasSubstr("\n")));
    }
    EXPECT_THAT(told::noPlace().substr(0, shownAtLeast), HasSubstr("last only for this run"));
}

TEST(SettingsProblem, IsValidUTF8WhateverThePlaceAndTheReason) {
    EXPECT_THAT(told::cannotBeRead("/home/\xFF/settings", "\xFE"),
                EndsWith("\xEF\xBF\xBD, /home/\xEF\xBF\xBD/settings."));
}

}  // namespace
}  // namespace tallowcrest
