#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/date.h"
#include "core/local_records.h"
#include "core/records_hash.h"
#include "core/uuid.h"

namespace tallowcrest {

/// One peer of the tailnet. Identity: `id`.
struct TailDevice {
    std::string id = {};
    std::string name = {};
    std::string hostName = {};
    bool online = false;
    std::vector<std::string> addresses = {};
    std::string os = {};
    bool active = false;
    bool inMagicSock = false;
    std::string currentAddress = {};
    std::string relay = {};

    auto fields() const {
        return std::tie(id, name, hostName, online, addresses, os, active, inMagicSock,
                        currentAddress, relay);
    }
    bool operator==(const TailDevice&) const = default;
};

/// One process row of a remote machine. Identity: `pid`.
struct RemoteProcess {
    std::int64_t pid = 0;
    double cpu = 0.0;
    double rssMB = 0.0;
    std::string command = {};

    std::string_view displayName() const { return displayNameOf(command); }

    auto fields() const { return std::tie(pid, cpu, rssMB, command); }
    bool operator==(const RemoteProcess&) const = default;
};

/// One application group of a remote machine. Identity: `name`.
struct RemoteAppImpact {
    std::string name = {};
    std::int64_t processCount = 0;
    double totalCPU = 0.0;
    double totalMemoryMB = 0.0;
    std::optional<std::int64_t> topPID = {};
    std::int64_t protectedCount = 0;

    auto fields() const {
        return std::tie(name, processCount, totalCPU, totalMemoryMB, topPID, protectedCount);
    }
    bool operator==(const RemoteAppImpact&) const = default;
};

/// The scan result of one remote machine. Identity: `id`.
struct RemoteHealth {
    enum class Status {
        reachable,
        noTailnetPath,
        noAddress,
        connectionBlocked,
        hostKeyIssue,
        authNeeded,
        unknown,  ///< shown as "Needs Setup"
    };

    std::string id = {};
    std::string hostName = {};
    std::string address = {};
    bool online = false;
    Status status = Status::unknown;
    std::optional<double> cpuPercent = {};
    std::optional<double> memoryPercent = {};
    std::optional<std::string> osVersion = {};
    std::optional<std::string> topCPUProcess = {};
    std::optional<std::string> topMemoryProcess = {};
    std::vector<RemoteProcess> topProcesses = {};
    std::vector<RemoteAppImpact> appImpacts = {};
    std::string recommendation = {};
    std::string summary = {};
    std::string setupHint = {};
    Date sampledAt = {};
    bool isLinux = false;  ///< sampled as a Linux machine, not as a Mac

    auto fields() const {
        return std::tie(id, hostName, address, online, status, cpuPercent, memoryPercent, osVersion,
                        topCPUProcess, topMemoryProcess, topProcesses, appImpacts, recommendation,
                        summary, setupHint, sampledAt, isLinux);
    }
    bool operator==(const RemoteHealth&) const = default;
};

/// `RemoteHealth::address` of a machine without one.
inline constexpr std::string_view noRemoteAddress = "no address";

inline bool isReachable(const RemoteHealth& machine) {
    return machine.status == RemoteHealth::Status::reachable;
}

/// The displayed name of a status, which is also its raw value.
std::string_view title(RemoteHealth::Status status);

/// The owner's settings for one remote host. Identity: `id`. Persisted.
struct RemoteProfile {
    std::string id = {};
    std::string nickname = {};
    std::string role = {};
    double warningThreshold = 0.0;
    bool allowRemotePurge = false;

    auto fields() const { return std::tie(id, nickname, role, warningThreshold, allowRemotePurge); }
    bool operator==(const RemoteProfile&) const = default;
};

/// One point of a remote machine's timeline. Identity: `id`. Persisted.
struct RemoteHistoryPoint {
    UUID id = {};
    std::string hostName = {};
    Date date = {};
    double cpu = 0.0;
    double memory = 0.0;
    std::string status = {};  ///< the title of the scan's status

    auto fields() const { return std::tie(id, hostName, date, cpu, memory, status); }
    bool operator==(const RemoteHistoryPoint&) const = default;
};

}  // namespace tallowcrest
