#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/activity_kinds.h"
#include "core/confirmation_desk.h"
#include "core/services.h"
#include "sampling/app_impact.h"
#include "sampling/latest_sample.h"
#include "tests/support/fake_local_actions.h"
#include "tests/support/process_row.h"
#include "tests/support/test_services.h"

namespace tallowcrest {

/// The local actions on a machine whose processes a test sets.
class LocalActionsFixture : public ::testing::Test, public TestServices {
public:
    static constexpr std::int64_t ownPID = 4242;
    static constexpr std::uint64_t firstStartTime = 1000;

    /// Adds a running process, which the next sample contains.
    ProcessSample& addProcess(std::int64_t pid, const std::string& command) {
        ProcessSample row = processRow(pid, command, 10.0, 100.0);
        row.startTime = firstStartTime;
        ports.processes->running[pid] = firstStartTime;
        rows.push_back(std::move(row));
        return rows.back();
    }

    /// Publishes a sample of the processes that run now.
    void takeSample(double pressure = 10.0) {
        SystemSnapshot snapshot;
        snapshot.memory.pressure = pressure;
        snapshot.topProcesses = rowsInOrder(rows, impactOrder(rows));
        snapshot.appImpacts = listedAppImpacts(rows, settings.values().protectedAppNames, policy);
        sample.setLatestProcesses(rows, impactOrder(rows));
        sample.setSnapshot(std::move(snapshot));
    }

    void endProcess(std::int64_t pid) {
        ports.processes->running.erase(pid);
        std::erase_if(rows, [pid](const ProcessSample& row) { return row.pid == pid; });
    }

    /// Ends the process and gives its pid to another one.
    void reusePid(std::int64_t pid) { ports.processes->running[pid] = firstStartTime + 1; }

    /// The services with another desk, for other actions beside `actions`.
    Services servicesWith(ConfirmationDesk& desk) {
        return {log, settings, desk, jobs, clock, locale};
    }

    void selectFirst() { review.selectFirstProcess(rows); }

    void confirm() {
        confirmations.confirmPending();
        finishWork();
    }

    const ConfirmationRequest& pending() const {
        EXPECT_TRUE(confirmations.pendingConfirmation());
        static const ConfirmationRequest none;
        return confirmations.pendingConfirmation() ? *confirmations.pendingConfirmation() : none;
    }

    /// The message is the last action and the newest event.
    void expectRecorded(const std::string& message) const {
        EXPECT_EQ(log.lastAction(), message);
        ASSERT_FALSE(log.activityLog().empty()) << message;
        EXPECT_EQ(log.activityLog().front().kind, ActivityKind::action);
        EXPECT_EQ(log.activityLog().front().detail, message);
    }

    static constexpr ProtectionPolicy policy{.ownPID = ownPID, .protectsLinuxSystem = true};

    LatestSample sample{settings, mainQueue};
    ReviewTarget review{services, sample, policy};
    FakeLocalActions ports;
    std::vector<ProcessSample> rows;
    int refreshes = 0;
    LocalActions actions{
        {services, sample, review, policy, [this] { ++refreshes; }, ports.ports()}};
};

}  // namespace tallowcrest
