#include "sampling/latest_sample.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/observable.h"
#include "sampling/app_impact.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class LatestSampleTest : public ::testing::Test {
protected:
    /// A snapshot whose first group is `leader`; without groups when it is empty.
    static SystemSnapshot ledBy(const std::string& leader) {
        SystemSnapshot snapshot;
        if (!leader.empty()) {
            snapshot.appImpacts.resize(2);
            snapshot.appImpacts[0].name = leader;
            snapshot.appImpacts[1].name = "Runner-up";
        }
        return snapshot;
    }

    void countLeader(const std::string& leader) {
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

    std::vector<HistoryPoint> storedHistory() const {
        return with.settings.load(stored::history).value();
    }

    TestServices with;
    LatestSample sample{with.settings, with.mainQueue};
};

TEST_F(LatestSampleTest, StartsEmptyAndSavesNothing) {
    EXPECT_EQ(sample.snapshot(), std::nullopt);
    EXPECT_THAT(sample.latestProcesses(), IsEmpty());
    EXPECT_THAT(sample.topAppSamples(), IsEmpty());
    sample.appendHistoryPoint();
    sample.countTopApp();
    EXPECT_THAT(sample.history(), IsEmpty());
    EXPECT_THAT(sample.topAppSamples(), IsEmpty());
    EXPECT_THAT(with.store.written, IsEmpty());
}

TEST_F(LatestSampleTest, TakesTheHistoryPointFromTheSnapshot) {
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
    sample.setSnapshot(snapshotAt(1000));
    EXPECT_THAT(with.store.written, IsEmpty());
    sample.appendHistoryPoint();
    EXPECT_THAT(with.store.written, ElementsAre(settings_keys::historyKey));
    EXPECT_EQ(storedHistory(), sample.history());
    sample.appendHistoryPoint();
    EXPECT_THAT(with.store.written, ::testing::SizeIs(2));
    EXPECT_EQ(storedHistory(), sample.history());
    EXPECT_EQ(storedHistory().size(), 2U);
}

TEST_F(LatestSampleTest, Keeps180PointsAndDropsTheOldest) {
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
    EXPECT_EQ(storedHistory(), sample.history());
}

TEST_F(LatestSampleTest, LoadsALongHistoryCompletelyAndTrimsItWithTheFirstSample) {
    std::vector<HistoryPoint> old;
    for (int i = 0; i < 500; ++i) {
        old.push_back({UUID::random(), Date{static_cast<double>(i)}, 1, 2});
    }
    with.settings.save(stored::history, old);
    LatestSample next(with.settings, with.mainQueue);
    EXPECT_EQ(next.history(), old);
    next.setSnapshot(snapshotAt(500));
    EXPECT_EQ(next.history().size(), 500U);
    next.appendHistoryPoint();
    ASSERT_EQ(next.history().size(), 180U);
    EXPECT_EQ(next.history().front(), old[321]);
    EXPECT_EQ(next.history().back().date, Date{500});
    EXPECT_EQ(storedHistory(), next.history());
}

TEST_F(LatestSampleTest, CountsOnlyTheFirstGroupOfEachSample) {
    countLeader("Arc");
    countLeader("Docker");
    countLeader("Docker");
    countLeader("");
    EXPECT_THAT(sample.topAppSamples(), ElementsAre(Pair("Arc", 1), Pair("Docker", 2)));
}

TEST_F(LatestSampleTest, Keeps80NamesWhateverTheirCounts) {
    for (int i = 0; i < 80; ++i) {
        countLeader(fmt::format("App {}", i));
    }
    EXPECT_EQ(sample.topAppSamples().size(), 80U);
    countLeader("App 3");
    EXPECT_EQ(sample.topAppSamples().size(), 80U);
}

TEST_F(LatestSampleTest, RebuildsTheCountsFromThe40HighestAtTheEightyFirstName) {
    // Names 0 to 79 have counts of 2 to 81, so the newcomer, with 1, has the lowest count.
    for (int name = 0; name < 80; ++name) {
        for (int count = 0; count < name + 2; ++count) {
            countLeader(fmt::format("App {:02}", name));
        }
    }
    countLeader("Newcomer");
    ASSERT_EQ(sample.topAppSamples().size(), 40U);
    for (int name = 40; name < 80; ++name) {
        EXPECT_EQ(sample.topAppSamples().at(fmt::format("App {:02}", name)), name + 2);
    }
}

TEST_F(LatestSampleTest, KeepsEveryHigherCountWhenTheLowestKeptCountIsShared) {
    for (int name = 0; name < 81; ++name) {
        // Ten names come first twice, the others once. Which of the others are kept is unspecified.
        for (int count = 0; count < (name % 8 == 0 && name < 80 ? 2 : 1); ++count) {
            countLeader(fmt::format("App {:02}", name));
        }
    }
    ASSERT_EQ(sample.topAppSamples().size(), 40U);
    for (int name = 0; name < 80; name += 8) {
        EXPECT_EQ(sample.topAppSamples().count(fmt::format("App {:02}", name)), 1U) << name;
    }
}

TEST_F(LatestSampleTest, NotifiesObserversOncePerSample) {
    int told = 0;
    const Subscription subscription = sample.observable().subscribe([&told] { ++told; });
    sample.setLatestProcesses({{7, 0, 0, 0, "app", "app"}}, {0});
    sample.setSnapshot(ledBy("Arc"));
    sample.appendHistoryPoint();
    sample.countTopApp();
    sample.setSessionInsights({});
    sample.setRecommendations({});
    EXPECT_EQ(told, 0);
    with.mainQueue.drain();
    EXPECT_EQ(told, 1);
    ASSERT_EQ(sample.latestProcesses().size(), 1U);
    EXPECT_EQ(sample.latestProcesses()[0].pid, 7);
}

TEST_F(LatestSampleTest, NotifiesOfTheFirstSampleOnce) {
    int told = 0;
    const Subscription subscription = sample.firstSample().subscribe([&told] { ++told; });
    sample.appendHistoryPoint();
    sample.setRecommendations({});
    with.mainQueue.drain();
    EXPECT_EQ(told, 0) << "there is no snapshot yet";
    for (int each = 0; each < 2; ++each) {
        sample.setSnapshot(ledBy("Arc"));
        with.mainQueue.drain();
        EXPECT_EQ(told, 1);
    }
}

TEST_F(LatestSampleTest, RegroupsTheLatestProcessesUnderAnotherNeverQuitList) {
    int told = 0;
    const Subscription subscription = sample.observable().subscribe([&told] { ++told; });
    const ProtectionPolicy policy{.ownPID = 4242};
    sample.setLatestProcesses({{7, 50, 0, 500, "/opt/Arc", "/opt/Arc"}}, {0});
    sample.regroup({"Arc"}, policy);
    with.mainQueue.drain();
    EXPECT_EQ(sample.snapshot(), std::nullopt);
    EXPECT_EQ(told, 0);

    sample.setSnapshot(ledBy("Docker"));
    with.mainQueue.drain();
    for (const ProtectedAppNames& neverQuit : {ProtectedAppNames{"Arc"}, ProtectedAppNames{}}) {
        told = 0;
        sample.regroup(neverQuit, policy);
        with.mainQueue.drain();
        EXPECT_EQ(told, 1);
        EXPECT_EQ(sample.snapshot()->appImpacts,
                  listedAppImpacts(sample.latestProcesses(), neverQuit, policy));
        ASSERT_EQ(sample.snapshot()->appImpacts.size(), 1U);
        EXPECT_EQ(sample.snapshot()->appImpacts.front().protectedCount, neverQuit.empty() ? 0 : 1);
    }
}

TEST_F(LatestSampleTest, SeparatesTheHistoryOfThisRun) {
    std::vector<HistoryPoint> old(100, {UUID::random(), Date{1}, 1, 2});
    with.settings.save(stored::history, old);
    LatestSample next(with.settings, with.mainQueue);
    EXPECT_THAT(next.historyOfThisRun(), IsEmpty());
    for (std::size_t count = 1; count <= LatestSample::maximumHistory + 1; ++count) {
        next.setSnapshot(snapshotAt(static_cast<double>(count)));
        next.appendHistoryPoint();
        const auto points = next.historyOfThisRun();
        ASSERT_EQ(points.size(), std::min(count, LatestSample::maximumHistory));
        EXPECT_EQ(points.back(), next.history().back());
    }
    EXPECT_EQ(next.historyOfThisRun().front().date, Date{2});
}

}  // namespace
}  // namespace tallowcrest
