#include "remote/tailnet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/desktop_actions.h"
#include "actions/tool_runner.h"
#include "core/observable.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_tailscale.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TailnetTest : public ::testing::Test, protected TestServices {
protected:
    void report(const std::string& hostName, const std::string& issue = "") {
        tailscale.json = R"({"Peer":{"key":{"HostName":")" + hostName + R"("}}})";
        tailscale.text = issue.empty() ? "" : "# Health check:\n" + issue;
    }

    std::vector<std::string> names() const {
        return eachOf(tailnet->state().tailDevices, &TailDevice::name);
    }

    FakeTailscale tailscale;
    ToolRunner tools{tailscale.allowed, tailscale, jobs, log};
    std::vector<std::string> copied;
    Pasteboard pasteboard{log, [this](const std::string& text) { copied.push_back(text); }};
    std::optional<Tailnet> tailnet{std::in_place, services,
                                   TailnetSources{tools, locale, {}, tailscale.cli}, pasteboard};
};

TEST_F(TailnetTest, StartsEmpty) {
    EXPECT_EQ(tailnet->state(), TailnetState());
    tailnet->publishReading();
    EXPECT_EQ(tailnet->state(), TailnetState());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(TailnetTest, AReadingIsSeenWhenItIsPublished) {
    report("studio", "Bad.");
    tailnet->beginReading();
    ASSERT_EQ(workQueue.pendingCount(), 1U);
    EXPECT_EQ(workQueue.laneOf(0), Lane::tailnet);
    finishWork();
    EXPECT_EQ(tailnet->state(), TailnetState());
    tailnet->publishReading();
    EXPECT_THAT(names(), ElementsAre("studio"));
    EXPECT_THAT(tailnet->state().tailscaleHealthIssues, ElementsAre("Bad."));
}

TEST_F(TailnetTest, OneReadingIsUnderWayAtATime) {
    report("studio");
    for (int i = 0; i < 8; ++i) {
        tailnet->beginReading();
        tailnet->publishReading();
    }
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    workQueue.run();
    tailnet->beginReading();
    EXPECT_EQ(workQueue.pendingCount(), 0U) << "the main thread does not know yet";
    mainQueue.drain();
    tailnet->beginReading();
    EXPECT_EQ(workQueue.pendingCount(), 1U);
}

TEST_F(TailnetTest, AReadingThatHangsHasFailedAndIsFollowedByAnother) {
    report("studio");
    tailnet->beginReading();
    finishWork();
    tailnet->publishReading();
    tailnet->beginReading();
    clock.advance(std::chrono::seconds(11));
    tailnet->beginReading();
    tailnet->publishReading();
    EXPECT_THAT(names(), ElementsAre("studio"));
    EXPECT_EQ(workQueue.pendingCount(), 1U);
    clock.advance(std::chrono::seconds(1));
    tailnet->beginReading();
    tailnet->publishReading();
    EXPECT_EQ(tailnet->state(), TailnetState());
    EXPECT_TRUE(tailnet->isUnanswered());
    report("late");
    workQueue.run();
    report("attic");
    finishWork();
    tailnet->publishReading();
    EXPECT_THAT(names(), ElementsAre("attic"));
}

TEST_F(TailnetTest, OfTwoReadingsTheLastIsPublished) {
    for (const char* name : {"first", "last"}) {
        report(name);
        tailnet->beginReading();
        finishWork();
    }
    tailnet->publishReading();
    EXPECT_THAT(names(), ElementsAre("last"));
}

TEST_F(TailnetTest, AFailedReadingEmptiesTheState) {
    report("studio", "Bad.");
    tailnet->beginReading();
    finishWork();
    tailnet->publishReading();
    tailscale.json = "garbage";
    tailscale.text = "";
    tailnet->beginReading();
    finishWork();
    EXPECT_THAT(names(), ElementsAre("studio"));
    tailnet->publishReading();
    EXPECT_EQ(tailnet->state(), TailnetState());
}

TEST_F(TailnetTest, ATailnetThatDoesNotAnswerIsNotTakenForAnEmptyOne) {
    int changes = 0;
    const Subscription subscription = tailnet->observable().subscribe([&] { ++changes; });
    const auto readAndPublish = [this] {
        tailnet->beginReading();
        finishWork();
        tailnet->publishReading();
        mainQueue.drain();
    };
    EXPECT_FALSE(tailnet->isUnanswered()) << "nothing has been read";
    tailscale.json = "garbage";
    readAndPublish();
    EXPECT_TRUE(tailnet->isUnanswered());
    EXPECT_EQ(changes, 1);
    readAndPublish();
    EXPECT_EQ(changes, 1);
    tailscale.json = R"({"Peer": {}})";
    readAndPublish();
    EXPECT_FALSE(tailnet->isUnanswered());
    EXPECT_EQ(changes, 2);
    tailscale.json = "";
    readAndPublish();
    EXPECT_TRUE(tailnet->isUnanswered());
}

TEST_F(TailnetTest, NotifiesOfChangesOnly) {
    int changes = 0;
    const Subscription subscription = tailnet->observable().subscribe([&] { ++changes; });
    const auto publishOne = [this] {
        tailnet->beginReading();
        finishWork();
        tailnet->publishReading();
        mainQueue.drain();
    };
    report("studio");
    publishOne();
    EXPECT_EQ(changes, 1);
    publishOne();
    EXPECT_EQ(changes, 1);
    report("studio", "Bad.");
    publishOne();
    EXPECT_EQ(changes, 2);
}

TEST_F(TailnetTest, WithoutAToolNothingIsRead) {
    Tailnet unread(services, {tools, locale, tailscale.daemon(), ""}, pasteboard);
    unread.beginReading();
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(TailnetTest, AReadingMayOutliveTheTailnet) {
    report("studio");
    tailnet->beginReading();
    workQueue.run();
    tailnet.reset();
    mainQueue.drain();
    EXPECT_EQ(tailscale.requests.size(), 2U);
}

TEST_F(TailnetTest, TheCommandThatTestsTheTailnetIsCopiedWithoutAnEvent) {
    EXPECT_EQ(tailnet->copyTailscaleHealthCommand(),
              Outcome::done("Copied Tailscale health command."));
    EXPECT_THAT(copied, ElementsAre("tailscale status && tailscale netcheck"));
    EXPECT_EQ(log.lastAction(), "Copied Tailscale health command.");
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
