#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/automation.h"
#include "advisor/trust.h"
#include "disk/disk_autopilot.h"
#include "integration/warning_notifications.h"
#include "monitor/auto_rules.h"
#include "tests/actions/local_actions_fixture.h"
#include "tests/support/each_of.h"
#include "tests/support/fake_disk_ports.h"
#include "tests/support/fake_notification_center.h"
#include "tests/support/remote_machines.h"

namespace tallowcrest {

/// The rules on a machine whose figures a test sets, with other machines to scan.
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

    void appendHistory(std::size_t points, double memory) {
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
        remote.setDevices({tailDevice("macOS", true)});
        addProcess(700, "/usr/bin/editor");
        appendHistory(30, 95.0);
    }

    void expectNothingDone() const {
        EXPECT_EQ(scans(), 0);
        EXPECT_THAT(log.activityLog(), ::testing::IsEmpty());
        EXPECT_EQ(review.selectedPID(), std::nullopt);
        EXPECT_FALSE(confirmations.pendingConfirmation());
        EXPECT_EQ(rules.dates(), AutomationDates{});
    }

    /// How many scans of other machines began.
    std::ptrdiff_t scans() const {
        return std::ranges::count_if(log.activityLog(), [](const ActivityEvent& event) {
            return event.detail.starts_with("Scanning ");
        });
    }

    std::vector<std::string> details() const {
        return eachOf(log.activityLog(),
                      [](const ActivityEvent& event) { return event.title + ": " + event.detail; });
    }

    std::vector<ActivityKind> kinds() const {
        return eachOf(log.activityLog(), &ActivityEvent::kind);
    }

    /// The process that each notification names, oldest first.
    std::vector<std::string> notified() const {
        return eachOf(center.posted, [](const NotificationContent& each) {
            constexpr std::string_view before = "Top process: ";
            const std::size_t begin = each.body.find(before) + before.size();
            return each.body.substr(begin, each.body.find('.', begin) - begin);
        });
    }

    RemoteMachines remote{services};
    FakeNotificationCenter center;
    WarningNotifications notifications{services, &center};
    Automation automation{services};
    Trust trust{services};
    FakeDiskPorts diskPorts;
    DiskAutopilot disk{{services, automation, trust, [] {}, diskPorts.ports()}};
    AutoRules rules{{services, sample, review, actions, notifications, policy, remote.scan, disk}};
};

}  // namespace tallowcrest
