// How the state of the tailnet comes with the samples.

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/actions.h"
#include "core/activity_log.h"
#include "monitor/system_monitor.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SampledTailnet : public ::testing::Test {
protected:
    SampledTailnet() {
        machine.tailscaleDaemon = [this](std::string_view /*request*/, const std::stop_token&) {
            ++readings;
            return std::optional("HTTP/1.0 200 OK\r\n\r\n" + status);
        };
    }

    SystemMonitor& monitor() { return machine.monitor(); }
    const TailnetState& state() { return monitor().remote().tailnet.state(); }
    std::vector<std::string> names() { return eachOf(state().tailDevices, &TailDevice::name); }

    std::vector<Lane> lanes() const {
        std::vector<Lane> result;
        for (std::size_t i = 0; i < machine.workQueue.pendingCount(); ++i) {
            result.push_back(machine.workQueue.laneOf(i));
        }
        return result;
    }

    /// Takes a sample and applies it, while the reading that was begun first is under way.
    void sampleDuringAReading() {
        machine.clock.advance(std::chrono::seconds(4));
        monitor().refresh();
        ASSERT_THAT(lanes(), ElementsAre(Lane::tailnet, Lane::sampling));
        machine.workQueue.run(1);
        machine.mainQueue.drain();
    }

    FakeMachine machine;
    std::string status = R"({"Health":["Bad."],"Peer":{"key":{"HostName":"studio"}}})";
    int readings = 0;
};

TEST_F(SampledTailnet, AReadingThatHangsDelaysNoSample) {
    for (int i = 0; i < 3; ++i) {
        sampleDuringAReading();
        EXPECT_EQ(monitor().sample().snapshot()->sampledAt, machine.clock.now());
        EXPECT_EQ(state(), TailnetState());
    }
    EXPECT_EQ(monitor().sample().history().size(), 3U);
    EXPECT_EQ(readings, 0);
    machine.workQueue.run();
    machine.mainQueue.drain();
    EXPECT_EQ(readings, 1);
    EXPECT_EQ(state(), TailnetState()) << "it comes with a sample";
    monitor().refresh();
    ASSERT_THAT(lanes(), ElementsAre(Lane::tailnet, Lane::sampling));
    machine.workQueue.run(1);
    machine.mainQueue.drain();
    EXPECT_THAT(names(), ElementsAre("studio"));
    EXPECT_THAT(state().tailscaleHealthIssues, ElementsAre("Bad."));
}

TEST_F(SampledTailnet, AReadingThatEndsInTimeComesWithItsSample) {
    std::vector<std::string> seen;
    machine.sampleApplied = [&] { seen = names(); };
    machine.tick();
    EXPECT_THAT(seen, ElementsAre("studio"));
    status = "{}";
    machine.tick();
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_EQ(readings, 2);
}

TEST_F(SampledTailnet, AReadOnlyRunDoesNotReadIt) {
    machine.readOnly = true;
    monitor().refresh();
    EXPECT_THAT(lanes(), ElementsAre(Lane::sampling));
    machine.finishSamples();
    EXPECT_EQ(readings, 0);
    EXPECT_EQ(state(), TailnetState());
}

TEST_F(SampledTailnet, NothingOfItIsStoredOrRecorded) {
    monitor();
    machine.store.written.clear();
    machine.tick();
    EXPECT_THAT(machine.store.written, ElementsAre("Tallowcrest.history"));
    EXPECT_THAT(monitor().log().activityLog(), IsEmpty());
}

TEST_F(SampledTailnet, TheDesktopOpensTheApplicationAndTakesTheCommand) {
    int opened = 0;
    std::vector<std::string> copied;
    machine.openTailscaleApp = [&] { return ++opened > 0; };
    machine.storeOnPasteboard = [&](const std::string& text) { copied.push_back(text); };
    EXPECT_EQ(monitor().actions().applications.openTailscaleApp(), Outcome::done());
    EXPECT_EQ(opened, 1);
    monitor().remote().tailnet.copyTailscaleHealthCommand();
    EXPECT_THAT(copied, ElementsAre("tailscale status && tailscale netcheck"));
}

}  // namespace
}  // namespace tallowcrest
