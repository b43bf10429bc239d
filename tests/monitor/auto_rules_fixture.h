#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "monitor/auto_rules.h"
#include "tests/actions/local_actions_fixture.h"
#include "tests/support/fake_auto_scan.h"
#include "tests/support/fake_notification_center.h"

namespace tallowcrest {

/// The rules over a machine of which a test sets every figure, with other machines to scan.
class AutoRulesFixture : public LocalActionsFixture {
protected:
    AutoRulesFixture() {
        set(&Settings::autoSelectTopOffender, false);
        store.written.clear();
    }

    template <class Value>
    void set(Value Settings::*field, std::type_identity_t<Value> value) {
        settings.set(field, std::move(value));
    }

    const SystemSnapshot& snapshot(double cpu, double pressure = 10.0) {
        takeSample(pressure);
        SystemSnapshot changed = *sample.snapshot();
        changed.cpuPercent = cpu;
        sample.setSnapshot(std::move(changed));
        return *sample.snapshot();
    }

    void run(double cpu, double pressure = 10.0) { rules.runAutoRules(snapshot(cpu, pressure)); }

    void remember(std::size_t points, double memory) {
        for (std::size_t i = 0; i < points; ++i) {
            snapshot(0.0, memory);
            sample.appendHistoryPoint();
        }
    }

    /// Every rule has a reason to act.
    void armAll() {
        set(&Settings::autoSelectTopOffender, true);
        set(&Settings::autoPurgeSustainedMemory, true);
        set(&Settings::autoScanRemoteMacs, true);
        remote.devices = {tailDevice("macOS", true)};
        addProcess(700, "/usr/bin/editor");
        remember(30, 95.0);
    }

    void expectNothingDone() const {
        EXPECT_EQ(remote.scans, 0);
        EXPECT_THAT(log.activityLog(), ::testing::IsEmpty());
        EXPECT_EQ(review.selectedPID(), std::nullopt);
        EXPECT_FALSE(confirmations.pendingConfirmation());
        EXPECT_EQ(rules.dates(), AutomationDates{});
    }

    std::vector<std::string> details() const {
        std::vector<std::string> result;
        for (const ActivityEvent& event : log.activityLog()) {
            result.push_back(event.title + ": " + event.detail);
        }
        return result;
    }

    std::vector<ActivityKind> kinds() const {
        std::vector<ActivityKind> result;
        for (const ActivityEvent& event : log.activityLog()) {
            result.push_back(event.kind);
        }
        return result;
    }

    /// The process that each notification names, the oldest first.
    std::vector<std::string> notified() const {
        std::vector<std::string> result;
        for (const NotificationContent& each : center.posted) {
            constexpr std::string_view before = "Top process: ";
            const std::size_t begin = each.body.find(before) + before.size();
            result.push_back(each.body.substr(begin, each.body.find('.', begin) - begin));
        }
        return result;
    }

    FakeAutoScan remote;
    FakeNotificationCenter center;
    WarningNotifications notifications{&center, settings, {}};
    AutoRules rules{{services, sample, review, actions, notifications, policy, &remote}};
};

}  // namespace tallowcrest
