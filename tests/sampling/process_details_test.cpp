#include "sampling/process_details.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "core/observable.h"
#include "tests/support/fake_process_details_reader.h"
#include "tests/support/process_row.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProcessDetailsTest : public testing::Test {
protected:
    ProcessDetailsTest() {
        reader->facts[7] = {{"bash", "-c", "sleep 5", "--token", "x"}, "root", "bash"};
        reader->facts[8] = {{"python3", "a.py"}, "", "python3"};
    }

    static ProcessSample row(std::int64_t pid, const char* command = "/usr/bin/bash",
                             std::uint64_t startTime = 100) {
        ProcessSample row = processRow(pid, command);
        row.startTime = startTime;
        return row;
    }

    void want(const std::vector<ProcessSample>& rows) {
        std::vector<const ProcessSample*> wanted;
        for (const ProcessSample& each : rows) {
            wanted.push_back(&each);
        }
        details.want(wanted);
    }

    /// Runs all jobs, also those that follow when others are done.
    void finishJobs() {
        while (services.workQueue.pendingCount() > 0) {
            services.finishWork();
        }
    }

    TestServices services;
    std::shared_ptr<FakeProcessDetailsReader> reader = std::make_shared<FakeProcessDetailsReader>();
    ProcessDetails details{services.jobs, reader};
};

TEST_F(ProcessDetailsTest, AreReadInTheBackgroundForTheRowsThatAreWanted) {
    int notified = 0;
    const Subscription subscription = details.observable().subscribe([&] { ++notified; });
    EXPECT_EQ(details.find(row(7)), nullptr);
    want({row(7), row(9)});
    ASSERT_EQ(services.workQueue.pendingCount(), 1U);
    EXPECT_EQ(services.workQueue.laneOf(0), Lane::details);
    EXPECT_THAT(reader->read, IsEmpty());
    finishJobs();
    EXPECT_THAT(reader->read, ElementsAre(7, 9));
    EXPECT_EQ(reader->startTimes[7], 100U);
    ASSERT_NE(details.find(row(7)), nullptr);
    EXPECT_EQ(*details.find(row(7)),
              (ProcessDetail{"root", "bash", "sleep 5", "bash -c 'sleep 5' --token (hidden)"}));
    EXPECT_EQ(details.find(row(8)), nullptr) << "nobody asked for it";
    EXPECT_EQ(details.find(row(9)), nullptr) << "it cannot be read";
    EXPECT_EQ(details.revision(), 1U);
    EXPECT_EQ(notified, 1);
}

TEST_F(ProcessDetailsTest, AreReadOncePerProcess) {
    want({row(7)});
    want({row(7)});
    finishJobs();
    want({row(7)});
    finishJobs();
    EXPECT_THAT(reader->read, ElementsAre(7));
    EXPECT_EQ(details.revision(), 1U);
}

TEST_F(ProcessDetailsTest, WhatCouldNotBeReadIsTriedAgainWithoutANotification) {
    want({row(9)});
    finishJobs();
    EXPECT_EQ(details.revision(), 0U);
    EXPECT_EQ(services.workQueue.pendingCount(), 0U) << "not before it is asked for again";
    reader->facts[9].owner = "root";
    want({row(9)});
    finishJobs();
    EXPECT_NE(details.find(row(9)), nullptr);
    EXPECT_EQ(details.revision(), 1U);
}

TEST_F(ProcessDetailsTest, VeryManyRowsNotifySeldom) {
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1000; pid < 4000; ++pid) {
        reader->facts[pid].owner = "root";
        rows.push_back(row(pid));
    }
    want(rows);
    finishJobs();
    EXPECT_EQ(reader->read.size(), 3000U);
    EXPECT_LE(details.revision(), 64U);
}

TEST_F(ProcessDetailsTest, AnotherProcessWithThePIDIsReadAgain) {
    want({row(7)});
    finishJobs();
    for (const ProcessSample& other : {row(7, "/usr/bin/bash", 101), row(7, "/usr/bin/sleep")}) {
        EXPECT_EQ(details.find(other), nullptr);
        want({other});
        finishJobs();
        EXPECT_NE(details.find(other), nullptr);
    }
    EXPECT_EQ(details.find(row(7)), nullptr);
    EXPECT_EQ(reader->read.size(), 3U);
}

TEST_F(ProcessDetailsTest, ALateResultIsNotGivenToTheNextProcessWithThePID) {
    want({row(7)});
    reader->facts[7].owner = "late";
    want({row(7, "/usr/bin/bash", 101)});
    ASSERT_EQ(services.workQueue.pendingCount(), 2U);
    services.workQueue.run(0);
    services.mainQueue.drain();
    EXPECT_EQ(details.find(row(7)), nullptr);
    EXPECT_EQ(details.find(row(7, "/usr/bin/bash", 101)), nullptr);
    finishJobs();
    EXPECT_NE(details.find(row(7, "/usr/bin/bash", 101)), nullptr);
}

TEST_F(ProcessDetailsTest, AHungJobCostsOnlyItsOwnRows) {
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1; pid <= 200; ++pid) {
        reader->facts[pid] = reader->facts[8];
        rows.push_back(row(pid));
    }
    want(rows);
    ASSERT_EQ(services.workQueue.pendingCount(), std::size_t{ProcessDetails::mostJobs});
    // The first job never ends.
    while (services.workQueue.pendingCount() > 1) {
        services.workQueue.run(1);
        services.mainQueue.drain();
    }
    EXPECT_EQ(details.find(rows.front()), nullptr);
    EXPECT_EQ(details.find(rows[ProcessDetails::rowsPerJob - 1]), nullptr);
    EXPECT_NE(details.find(rows[ProcessDetails::rowsPerJob]), nullptr);
    EXPECT_NE(details.find(rows.back()), nullptr);
}

TEST_F(ProcessDetailsTest, WhatNobodyWantsAnyMoreIsNotRead) {
    std::vector<ProcessSample> rows;
    for (std::int64_t pid = 1; pid <= 200; ++pid) {
        rows.push_back(row(pid));
    }
    want(rows);
    want({row(500)});
    finishJobs();
    EXPECT_EQ(reader->read.size(), ProcessDetails::mostJobs * ProcessDetails::rowsPerJob + 1);
    EXPECT_EQ(reader->read.back(), 500);
}

TEST_F(ProcessDetailsTest, ForgetsEndedProcessesInTheEnd) {
    want({row(7)});
    finishJobs();
    std::vector<ProcessSample> rows;
    for (std::size_t i = 0; i <= ProcessDetails::mostKept; ++i) {
        const auto pid = static_cast<std::int64_t>(1000 + i);
        reader->facts[pid] = reader->facts[8];
        rows.push_back(row(pid));
    }
    want(rows);
    finishJobs();
    EXPECT_NE(details.find(row(7)), nullptr);
    want({row(8)});
    finishJobs();
    EXPECT_EQ(details.find(row(7)), nullptr);
    EXPECT_NE(details.find(row(8)), nullptr);
}

TEST_F(ProcessDetailsTest, WithoutAReaderNothingIsDone) {
    ProcessDetails none(services.jobs, nullptr);
    const ProcessSample bash = row(7);
    none.want({&bash});
    EXPECT_EQ(services.workQueue.pendingCount(), 0U);
    EXPECT_EQ(none.find(bash), nullptr);
}

}  // namespace
}  // namespace tallowcrest
