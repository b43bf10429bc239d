#include "remote/remote_profiles.h"

#include <limits>

#include <gtest/gtest.h>

#include "core/observable.h"
#include "core/settings/stored_lists.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

class RemoteProfilesTest : public ::testing::Test, protected TestServices {
protected:
    std::optional<std::map<std::string, RemoteProfile>> storedProfiles() {
        return settings.load(stored::remoteProfiles);
    }

    RemoteProfiles profiles{services};
};

TEST_F(RemoteProfilesTest, TheDefaultFollowsTheLocalThresholdAndIsNotStored) {
    EXPECT_EQ(profiles.remoteProfile("studio"), (RemoteProfile{"studio", "studio", "Mac", 82.0}));
    settings.set(&Settings::warningThreshold, 70.0);
    EXPECT_EQ(profiles.remoteProfile("studio"), (RemoteProfile{"studio", "studio", "Mac", 70.0}));
    EXPECT_EQ(profiles.remoteProfile(""), (RemoteProfile{"", "", "Mac", 70.0}));
    EXPECT_EQ(storedProfiles(), std::nullopt);
}

TEST_F(RemoteProfilesTest, ALinuxMachineHasARoleOfItsOwnUntilTheOwnerGivesItOne) {
    EXPECT_EQ(profiles.remoteProfile("server", true).role, "Linux");
    EXPECT_EQ(profiles.remoteProfile("server").role, "Mac");
    profiles.updateRemoteProfile("server", {.nickname = "Web"}, true);
    EXPECT_EQ(profiles.remoteProfile("server"), (RemoteProfile{"server", "Web", "Linux", 82.0}));
    profiles.updateRemoteProfile("server", {.role = "build"}, true);
    EXPECT_EQ(profiles.remoteProfile("server", true).role, "build");
    EXPECT_EQ(profiles.remoteProfiles().size(), 1U);
}

TEST_F(RemoteProfilesTest, AnUpdateChangesWhatIsGivenAndStoresIt) {
    struct Case {
        RemoteProfileChange change;
        RemoteProfile after;
    };
    const Case cases[] = {
        {{}, {"studio", "studio", "Mac", 82.0, false}},
        {{.nickname = " \t Attic \n"}, {"studio", "Attic", "Mac", 82.0, false}},
        {{.role = "\u00A0render farm\r\n"}, {"studio", "Attic", "render farm", 82.0, false}},
        {{.warningThreshold = 0.0}, {"studio", "Attic", "render farm", 0.0, false}},
        {{.allowRemotePurge = true}, {"studio", "Attic", "render farm", 0.0, true}},
        {{.nickname = "  ", .role = ""}, {"studio", "", "", 0.0, true}},
        {{"Zürich 日本", "server", 99.5, false}, {"studio", "Zürich 日本", "server", 99.5, false}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.after.nickname);
        EXPECT_EQ(profiles.updateRemoteProfile("studio", each.change), Outcome::done());
        EXPECT_EQ(profiles.remoteProfile("studio"), each.after);
        EXPECT_EQ(storedProfiles(), (std::map<std::string, RemoteProfile>{{"studio", each.after}}));
    }
    EXPECT_TRUE(log.activityLog().empty());
}

TEST_F(RemoteProfilesTest, AStoredThresholdNoLongerFollowsTheLocalOne) {
    profiles.updateRemoteProfile("studio", {.role = "server"});
    settings.set(&Settings::warningThreshold, 70.0);
    EXPECT_EQ(profiles.remoteProfile("studio").warningThreshold, 82.0);
    EXPECT_EQ(profiles.remoteProfile("attic").warningThreshold, 70.0);
}

TEST_F(RemoteProfilesTest, AreRestoredAtTheNextStartAndEachHostHasItsOwn) {
    const std::string hostile = "a\"b\\c\nd'; rm -rf ~" + std::string(10000, 'x');
    profiles.updateRemoteProfile("studio", {.nickname = "Attic"});
    profiles.updateRemoteProfile(hostile, {.allowRemotePurge = true});
    const RemoteProfiles restored(services);
    EXPECT_EQ(restored.remoteProfile("studio").nickname, "Attic");
    EXPECT_FALSE(restored.remoteProfile("studio").allowRemotePurge);
    EXPECT_TRUE(restored.remoteProfile(hostile).allowRemotePurge);
    EXPECT_EQ(restored.remoteProfile("Studio").nickname, "Studio");
}

TEST_F(RemoteProfilesTest, WhatCannotBeEncodedHoldsInThisRun) {
    profiles.updateRemoteProfile("studio", {.nickname = "Attic"});
    const auto before = storedProfiles();
    profiles.updateRemoteProfile("studio",
                                 {.warningThreshold = std::numeric_limits<double>::infinity()});
    EXPECT_EQ(profiles.remoteProfile("studio").warningThreshold,
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(storedProfiles(), before);
}

TEST(RemoteProfilesOfAnEarlierRun, StartEmptyWhenTheyCannotBeRead) {
    TestServices with([](SettingsStore& store) {
        store.write(settings_keys::remoteProfilesKey, JSONData{"[{"});
    });
    const RemoteProfiles profiles(with.services);
    EXPECT_EQ(profiles.remoteProfile("studio").role, "Mac");
}

TEST_F(RemoteProfilesTest, NotifiesOfAnUpdate) {
    int changes = 0;
    const Subscription subscription = profiles.observable().subscribe([&] { ++changes; });
    profiles.updateRemoteProfile("studio", {.role = "server"});
    mainQueue.drain();
    EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace tallowcrest
