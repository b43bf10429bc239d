#include "actions/connection_settings.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_services.h"

namespace tallowcrest::connection_settings {
namespace {

using ::testing::IsEmpty;

class ConnectionSettings : public ::testing::Test, protected TestServices {};

TEST_F(ConnectionSettings, AValidUserNameIsStoredTrimmedWithoutAMessage) {
    EXPECT_EQ(setSSHUsername(settings, log, "  remote.user-1 \n"), Outcome::done());
    EXPECT_EQ(settings.values().sshUsername, "remote.user-1");
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), SettingsValue(std::string("remote.user-1")));
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConnectionSettings, ANameThatTrimsToNothingIsStoredAsEmpty) {
    settings.set(&Settings::sshUsername, "someone");
    EXPECT_EQ(setSSHUsername(settings, log, " \t "), Outcome::done());
    EXPECT_EQ(settings.values().sshUsername, "");
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), SettingsValue(std::string()));
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConnectionSettings, AnInvalidNameChangesNothingAndIsRefused) {
    const std::string refusal =
        "SSH usernames may contain only letters, numbers, period, underscore, and hyphen.";
    for (const char* bad : {"-oProxyCommand=x", "two words", "semi;colon", "a@b", "ü"}) {
        log.clearActivityLog();
        EXPECT_EQ(setSSHUsername(settings, log, bad), Outcome::refused(refusal)) << bad;
        EXPECT_EQ(settings.values().sshUsername, "owner") << bad;
        EXPECT_EQ(log.lastAction(), refusal) << bad;
        ASSERT_EQ(log.activityLog().size(), 1U) << bad;
        EXPECT_EQ(log.activityLog().front().detail, refusal) << bad;
    }
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), std::nullopt);
}

TEST_F(ConnectionSettings, TheModelIsTrimmedAndKeptAsGiven) {
    setOpenAIModel(settings, log, "  any model at all!\n");
    EXPECT_EQ(settings.values().openAIModel, "any model at all!");
    EXPECT_EQ(store.read("Tallowcrest.openAIModel"),
              SettingsValue(std::string("any model at all!")));
    setOpenAIModel(settings, log, "   ");
    EXPECT_EQ(settings.values().openAIModel, "");
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConnectionSettings, ANameOfAModelThatIsTooLongIsRefused) {
    const std::string longest(maximumModelCharacters, 'm');
    EXPECT_EQ(setOpenAIModel(settings, log, " " + longest + " "), Outcome::done());
    EXPECT_EQ(settings.values().openAIModel, longest);
    const Outcome refused =
        Outcome::refused("The name of a model may have at most 256 characters.");
    EXPECT_EQ(setOpenAIModel(settings, log, longest + "x"), refused);
    EXPECT_EQ(settings.values().openAIModel, longest);
    EXPECT_EQ(log.lastAction(), refused.message);
}

}  // namespace
}  // namespace tallowcrest::connection_settings
