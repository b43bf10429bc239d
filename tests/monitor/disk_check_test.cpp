#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "tests/monitor/auto_rules_fixture.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The check of the disk among the rules.
class DiskCheckTest : public AutoRulesFixture {
protected:
    DiskCheckTest() { set(&Settings::diskAutopilotEnabled, true); }

    void runWithFree(double freeGB) {
        SystemSnapshot low = snapshot(10.0);
        low.disk = {.totalGB = 500.0, .freeGB = freeGB};
        rules.runAutoRules(low);
        finishWork();
    }
    std::size_t walks() const { return diskPorts.walk->roots.size(); }
};

TEST_F(DiskCheckTest, LowSpaceIsCheckedAtOnceAndAgainAfterMoreThanAnHour) {
    runWithFree(19.0);
    EXPECT_EQ(walks(), 1U);
    EXPECT_EQ(rules.dates().lastDiskAutopilotCheckDate, clock.now());
    clock.advance(3600s);
    runWithFree(19.0);
    EXPECT_EQ(walks(), 1U);
    clock.advance(1s);
    runWithFree(19.0);
    EXPECT_EQ(walks(), 2U);
    EXPECT_EQ(rules.dates().lastDiskAutopilotCheckDate, clock.now());
}

TEST_F(DiskCheckTest, EnoughSpaceStartsNoPause) {
    runWithFree(20.0);
    EXPECT_EQ(walks(), 0U);
    EXPECT_EQ(rules.dates().lastDiskAutopilotCheckDate, std::nullopt);
    EXPECT_EQ(automation.diskAutopilotStatus(), "Healthy: 20.0 GB free.");
}

TEST_F(DiskCheckTest, TheStopPreventsTheCheck) {
    set(&Settings::automationEmergencyStopEngaged, true);
    runWithFree(1.0);
    EXPECT_EQ(walks(), 0U);
    EXPECT_EQ(rules.dates().lastDiskAutopilotCheckDate, std::nullopt);
}

TEST_F(DiskCheckTest, ItIsTheLastOfTheRules) {
    armAll();
    SystemSnapshot low = snapshot(99.0);
    low.disk = {.totalGB = 500.0, .freeGB = 1.0};
    rules.runAutoRules(low);
    ASSERT_EQ(workQueue.pendingCount(), 2U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::remoteScan);
    EXPECT_EQ(workQueue.laneOf(1), Lane::diskCleanup);
}

/// The whole monitor on a machine with an old cache file and little space.
class DiskOfMonitorTest : public ::testing::Test {
protected:
    DiskOfMonitorTest() {
        machine.disk = diskPorts.ports();
        machine.metrics->disk = {.totalGB = 500.0, .freeGB = 1.0};
        diskPorts.files.add("/home/owner/.cache/old", 4096, 0.0);
        machine.monitor().settingsOwner().set(&Settings::diskAutopilotEnabled, true);
    }

    FakeDiskPorts diskPorts;
    FakeMachine machine;
};

TEST_F(DiskOfMonitorTest, ASampleChecksTheDisk) {
    machine.tick();
    machine.finishSamples();
    EXPECT_THAT(diskPorts.walk->roots, ElementsAre("/home/owner/.cache"));
    ASSERT_THAT(machine.monitor().log().activityLog(), SizeIs(1));
    EXPECT_EQ(machine.monitor().log().activityLog()[0].title, "Disk Autopilot");
    machine.tick();
    machine.finishSamples();
    EXPECT_THAT(diskPorts.walk->roots, SizeIs(1));
}

TEST_F(DiskOfMonitorTest, AReviewedCleanUpIsFollowedByASample) {
    int samples = 0;
    machine.sampleApplied = [&] { ++samples; };
    machine.monitor().disk().autopilot.reviewDiskCleanup();
    machine.finishSamples();
    machine.monitor().confirmations().confirmPending();
    machine.finishSamples();
    EXPECT_EQ(samples, 0);
    machine.finishSamples();
    EXPECT_THAT(diskPorts.trash->moved, ElementsAre("/home/owner/.cache/old"));
    EXPECT_EQ(samples, 1);
}

TEST(DiskOfMonitor, WithoutPortsTheDiskIsLeftAlone) {
    FakeMachine machine;
    machine.metrics->disk = {.totalGB = 500.0, .freeGB = 1.0};
    machine.monitor().settingsOwner().set(&Settings::diskAutopilotEnabled, true);
    machine.tick();
    machine.finishSamples();
    EXPECT_THAT(machine.monitor().log().activityLog(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
