#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "core/jobs/jobs.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/manual_queues.h"

namespace tallowcrest {

/// Expects that the end of the program, which comes while the export writes into `folder`, waits
/// until the file is whole. `beginExport` queues the export in the lane of the reports.
inline void expectEndWaitsForWrite(Jobs& jobs, ManualWorkQueue& workQueue, FakeReportFolder& folder,
                                   const std::function<void()>& beginExport) {
    std::optional<Stop> stop;
    JobScope other(jobs);
    other.run(
        Lane::reports, [&stop](const Stop& given) { stop = given; }, [] {});
    workQueue.run();

    std::atomic<bool> hasStopped = false;
    std::jthread end;
    folder.onWrite = [&] {
        end = std::jthread([&] {
            jobs.stopAll();
            hasStopped = true;
        });
        // Once no further change may begin, `stopAll` waits for this one or returns at once.
        while (stop->beginChange()) {
            std::this_thread::yield();
        }
        for (int turn = 0; turn < 1000 && !hasStopped; ++turn) {
            std::this_thread::yield();
        }
        EXPECT_FALSE(hasStopped) << "the file is not written yet";
    };
    beginExport();
    workQueue.run();
    ASSERT_TRUE(end.joinable()) << "nothing was written";
    end.join();
    EXPECT_TRUE(hasStopped);
}

}  // namespace tallowcrest
