#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "core/record_json.h"
#include "disk/disk.h"
#include "tests/support/advisor_machine.h"
#include "tests/support/fake_disk_ports.h"

namespace tallowcrest {

/// The disk's care with everything that it acts on, on a machine whose files a test sets.
struct DiskMachine : AdvisorMachine {
    static constexpr std::int64_t gigabyte = 1073741824;

    explicit DiskMachine(std::optional<std::string> key = {}) : AdvisorMachine({}, std::move(key)) {
        beginDisk();
    }

    /// Builds the disk's care from the ports as they are now, in place of an earlier one.
    void beginDisk() { beginDisk(diskPorts.ports()); }
    void beginDisk(const DiskPorts& ports) {
        disk.reset();
        disk.emplace(Disk::Dependencies{services, sample, actions, remote.tools, *advisor,
                                        [this] { ++refreshes; }, ports});
    }

    /// Adds a cache file that is `days` old, and returns its path.
    std::string cacheFile(const std::string& name, std::int64_t bytes, double days = 40.0) {
        const std::string path = "/home/owner/.cache/" + name;
        diskPorts.files.add(path, bytes, clock.now().unixSeconds() - days * 86400.0);
        return path;
    }

    SystemSnapshot diskOf(double freeGB, double totalGB = 500.0) const {
        SystemSnapshot snapshot;
        snapshot.disk = {.totalGB = totalGB, .freeGB = freeGB};
        return snapshot;
    }

    const std::string& status() const { return actions.automation.diskAutopilotStatus(); }

    /// "approved, run, blocked" of the clean-ups.
    std::vector<std::int64_t> trustCounts() const {
        const auto& records = advisor->trust.aiTrustRecords();
        const auto found = records.find("disk_cleanup");
        if (found == records.end()) {
            return {0, 0, 0};
        }
        return {found->second.approvedCount, found->second.runCount, found->second.blockedCount};
    }

    /// Autopilot on and trusted: two approvals and three runs, 78 percent.
    void trustAutopilot() {
        for (int i = 0; i < 3; ++i) {
            advisor->trust.recordTrustEvent("disk_cleanup", TrustEvent::run);
        }
        for (int i = 0; i < 2; ++i) {
            advisor->trust.recordTrustEvent("disk_cleanup", TrustEvent::approved);
        }
        settings.set(&Settings::diskAutopilotEnabled, true);
        settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::autopilot);
    }

    FakeDiskPorts diskPorts;
    int refreshes = 0;
    std::optional<Disk> disk;
};

}  // namespace tallowcrest
