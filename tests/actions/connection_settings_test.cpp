#include "actions/connection_settings.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::IsEmpty;

class ConnectionSettingsTest : public ::testing::Test {
protected:
    ManualClock clock;
    ManualMainQueue mainQueue;
    Observable observable{mainQueue};
    ActivityLog log{clock, observable, {}, [](const auto&) {}};
    Settings settings;
    MemorySettingsStore store;
    ConnectionSettings connection{observable, log, settings, store};
};

TEST_F(ConnectionSettingsTest, AValidUserNameIsStoredTrimmedAndInSilence) {
    EXPECT_TRUE(connection.setSSHUsername("  remote.user-1 \n"));
    EXPECT_EQ(settings.sshUsername, "remote.user-1");
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), SettingsValue(std::string("remote.user-1")));
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConnectionSettingsTest, ANameThatTrimsToNothingIsStoredAsEmpty) {
    settings.sshUsername = "someone";
    EXPECT_TRUE(connection.setSSHUsername(" \t "));
    EXPECT_EQ(settings.sshUsername, "");
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), SettingsValue(std::string()));
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ConnectionSettingsTest, AnInvalidNameChangesNothingAndIsRefusedInWords) {
    settings.sshUsername = "someone";
    for (const char* bad : {"-oProxyCommand=x", "two words", "semi;colon", "a@b", "ü"}) {
        EXPECT_FALSE(connection.setSSHUsername(bad)) << bad;
        EXPECT_EQ(settings.sshUsername, "someone") << bad;
        EXPECT_EQ(log.lastAction(),
                  "SSH usernames may contain only letters, numbers, period, underscore, and "
                  "hyphen.");
        EXPECT_EQ(log.activityLog().front().detail, log.lastAction());
    }
    EXPECT_EQ(store.read("Tallowcrest.sshUsername"), std::nullopt);
}

TEST_F(ConnectionSettingsTest, TheModelIsTrimmedAndKeptAsGiven) {
    connection.setOpenAIModel("  any model at all!\n");
    EXPECT_EQ(settings.openAIModel, "any model at all!");
    EXPECT_EQ(store.read("Tallowcrest.openAIModel"),
              SettingsValue(std::string("any model at all!")));
    connection.setOpenAIModel("   ");
    EXPECT_EQ(settings.openAIModel, "");
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
