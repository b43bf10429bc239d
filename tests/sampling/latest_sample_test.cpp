#include "sampling/latest_sample.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class LatestSampleTest : public ::testing::Test {
protected:
    LatestSample makeSample(std::vector<HistoryPoint> stored = {}) {
        return LatestSample(observable, std::move(stored),
                            [this](const auto& history) { saves.push_back(history); });
    }

    /// A snapshot that `leader` leads, if it is not empty.
    static SystemSnapshot ledBy(const std::string& leader) {
        SystemSnapshot snapshot;
        if (!leader.empty()) {
            snapshot.appImpacts.resize(2);
            snapshot.appImpacts[0].name = leader;
            snapshot.appImpacts[1].name = "Runner-up";
        }
        return snapshot;
    }

    static void countLeader(LatestSample& sample, const std::string& leader) {
        sample.setSnapshot(ledBy(leader));
        sample.countTopApp();
    }

    static SystemSnapshot snapshotAt(double seconds) {
        SystemSnapshot snapshot;
        snapshot.cpuPercent = 12.5;
        snapshot.memory.pressure = 40.25;
        snapshot.sampledAt = Date{seconds};
        return snapshot;
    }

    ManualMainQueue queue;
    Observable observable{queue};
    std::vector<std::vector<HistoryPoint>> saves;
};

TEST_F(LatestSampleTest, StartsEmptyAndSavesNothing) {
    LatestSample sample = makeSample();
    EXPECT_EQ(sample.snapshot(), std::nullopt);
    EXPECT_THAT(sample.latestProcesses(), IsEmpty());
    EXPECT_THAT(sample.topAppSamples(), IsEmpty());
    sample.appendHistoryPoint();
    sample.countTopApp();
    EXPECT_THAT(sample.history(), IsEmpty());
    EXPECT_THAT(sample.topAppSamples(), IsEmpty());
    EXPECT_THAT(saves, IsEmpty());
}

TEST_F(LatestSampleTest, TakesTheHistoryPointFromTheSnapshot) {
    LatestSample sample = makeSample();
    sample.setSnapshot(snapshotAt(1000));
    sample.appendHistoryPoint();
    sample.setSnapshot(snapshotAt(1004));
    sample.appendHistoryPoint();
    ASSERT_EQ(sample.history().size(), 2U);
    EXPECT_EQ(sample.history()[0].date, Date{1000});
    EXPECT_EQ(sample.history()[1].date, Date{1004});
    EXPECT_EQ(sample.history()[0].cpu, 12.5);
    EXPECT_EQ(sample.history()[0].memory, 40.25);
    EXPECT_NE(sample.history()[0].id, sample.history()[1].id);
    EXPECT_NE(sample.history()[0].id, UUID{});
}

TEST_F(LatestSampleTest, SavesTheWholeHistoryEachTime) {
    LatestSample sample = makeSample();
    sample.setSnapshot(snapshotAt(1000));
    EXPECT_THAT(saves, IsEmpty());
    sample.appendHistoryPoint();
    ASSERT_EQ(saves.size(), 1U);
    EXPECT_EQ(saves[0], sample.history());
    sample.appendHistoryPoint();
    ASSERT_EQ(saves.size(), 2U);
    EXPECT_EQ(saves[1], sample.history());
    EXPECT_EQ(saves[1].size(), 2U);
}

TEST_F(LatestSampleTest, Keeps180PointsAndDropsTheOldest) {
    LatestSample sample = makeSample();
    for (int i = 0; i < 180; ++i) {
        sample.setSnapshot(snapshotAt(i));
        sample.appendHistoryPoint();
    }
    ASSERT_EQ(sample.history().size(), 180U);
    EXPECT_EQ(sample.history().front().date, Date{0});

    sample.setSnapshot(snapshotAt(180));
    sample.appendHistoryPoint();
    ASSERT_EQ(sample.history().size(), 180U);
    EXPECT_EQ(sample.history().front().date, Date{1});
    EXPECT_EQ(sample.history().back().date, Date{180});
    EXPECT_EQ(saves.back(), sample.history());
}

TEST_F(LatestSampleTest, LoadsALongHistoryWholeAndTrimsItWithTheFirstSample) {
    std::vector<HistoryPoint> stored;
    for (int i = 0; i < 500; ++i) {
        stored.push_back({UUID::random(), Date{static_cast<double>(i)}, 1, 2});
    }
    LatestSample sample = makeSample(stored);
    EXPECT_EQ(sample.history(), stored);
    sample.setSnapshot(snapshotAt(500));
    EXPECT_EQ(sample.history().size(), 500U);
    sample.appendHistoryPoint();
    ASSERT_EQ(sample.history().size(), 180U);
    EXPECT_EQ(sample.history().front(), stored[321]);
    EXPECT_EQ(sample.history().back().date, Date{500});
    EXPECT_EQ(saves.back().size(), 180U);
}

TEST_F(LatestSampleTest, CountsTheLeaderOfEachSampleAlone) {
    LatestSample sample = makeSample();
    countLeader(sample, "Arc");
    countLeader(sample, "Docker");
    countLeader(sample, "Docker");
    countLeader(sample, "");
    EXPECT_THAT(sample.topAppSamples(), ElementsAre(Pair("Arc", 1), Pair("Docker", 2)));
}

TEST_F(LatestSampleTest, Keeps80NamesWhateverTheirCounts) {
    LatestSample sample = makeSample();
    for (int i = 0; i < 80; ++i) {
        countLeader(sample, fmt::format("App {}", i));
    }
    EXPECT_EQ(sample.topAppSamples().size(), 80U);
    countLeader(sample, "App 3");
    EXPECT_EQ(sample.topAppSamples().size(), 80U);
}

TEST_F(LatestSampleTest, RebuildsTheCountsFromThe40HighestAtTheEightyFirstName) {
    LatestSample sample = makeSample();
    // Names 0 to 79 with counts 2 to 81, so that the newcomer with its 1 is the lowest of all.
    for (int name = 0; name < 80; ++name) {
        for (int count = 0; count < name + 2; ++count) {
            countLeader(sample, fmt::format("App {:02}", name));
        }
    }
    countLeader(sample, "Newcomer");
    ASSERT_EQ(sample.topAppSamples().size(), 40U);
    for (int name = 40; name < 80; ++name) {
        EXPECT_EQ(sample.topAppSamples().at(fmt::format("App {:02}", name)), name + 2);
    }
}

TEST_F(LatestSampleTest, KeepsEveryHigherCountWhenTheLowestKeptIsShared) {
    LatestSample sample = makeSample();
    for (int name = 0; name < 81; ++name) {
        // Ten names lead twice, the others once; which of the others survive is left open.
        for (int count = 0; count < (name % 8 == 0 && name < 80 ? 2 : 1); ++count) {
            countLeader(sample, fmt::format("App {:02}", name));
        }
    }
    ASSERT_EQ(sample.topAppSamples().size(), 40U);
    for (int name = 0; name < 80; name += 8) {
        EXPECT_EQ(sample.topAppSamples().count(fmt::format("App {:02}", name)), 1U) << name;
    }
}

TEST_F(LatestSampleTest, TellsItsObserversOnceForAWholeSample) {
    LatestSample sample = makeSample();
    int told = 0;
    const Subscription subscription = observable.subscribe([&told] { ++told; });
    sample.setLatestProcesses({{7, 0, 0, 0, "app", "app"}}, {0});
    sample.setSnapshot(ledBy("Arc"));
    sample.appendHistoryPoint();
    sample.countTopApp();
    sample.setSessionInsights({});
    sample.setRecommendations({});
    EXPECT_EQ(told, 0);
    queue.drain();
    EXPECT_EQ(told, 1);
    ASSERT_EQ(sample.latestProcesses().size(), 1U);
    EXPECT_EQ(sample.latestProcesses()[0].pid, 7);
}

}  // namespace
}  // namespace tallowcrest
