#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/date.h"
#include "core/records_hash.h"
#include "core/uuid.h"

namespace tallowcrest {

/// The last component of a path, trailing slashes ignored ("/usr/lib/" gives "lib"). Empty when
/// there is none. A view into `path`.
std::string_view lastPathComponent(std::string_view path);

/// The last path component of a process's command, or the command itself when that component is
/// empty. A name in brackets belongs to a process without an executable; it is not a path and is
/// kept whole. A view into `command`.
std::string_view displayNameOf(std::string_view command);

// The records of one sample of this machine and those that the monitor derives from it. Percent
// values run from 0 to 100; GB is bytes divided by 2^30 and MB is KiB divided by 1024.

/// One row of the process table. Identity: `pid`.
struct ProcessSample {
    std::int64_t pid = 0;
    double cpu = 0.0;  ///< percent of one core; can exceed 100
    double memoryPercent = 0.0;
    double rssMB = 0.0;
    std::string command;    ///< usually the executable's absolute path
    std::string arguments;  ///< deliberately the same text as `command`
    /// In a platform-specific unit. Process ids are reused; `pid` and start time together identify
    /// one process. 0 when unknown.
    std::uint64_t startTime = 0;

    std::string_view displayName() const { return displayNameOf(command); }

    auto fields() const {
        return std::tie(pid, cpu, memoryPercent, rssMB, command, arguments, startTime);
    }
    bool operator==(const ProcessSample&) const = default;
};

/// The first row with that process id; null when there is none. Points into `rows`.
const ProcessSample* findProcess(std::span<const ProcessSample> rows, std::int64_t pid);

/// One application group. Identity: `name`.
struct AppImpact {
    std::string name;
    std::int64_t processCount = 0;
    double totalCPU = 0.0;
    double totalMemoryMB = 0.0;
    std::optional<std::int64_t> topPID;  ///< the group's top safe process
    std::int64_t protectedCount = 0;

    auto fields() const {
        return std::tie(name, processCount, totalCPU, totalMemoryMB, topPID, protectedCount);
    }
    bool operator==(const AppImpact&) const = default;
};

struct MemorySnapshot {
    double totalGB = 0.0;
    double usedGB = 0.0;
    double freeGB = 0.0;
    double wiredGB = 0.0;
    double compressedGB = 0.0;
    double pressure = 0.0;  ///< percent

    auto fields() const {
        return std::tie(totalGB, usedGB, freeGB, wiredGB, compressedGB, pressure);
    }
    bool operator==(const MemorySnapshot&) const = default;
};

/// The volume that holds the home directory. A figure of 0 can mean unknown.
struct DiskSnapshot {
    double totalGB = 0.0;
    double freeGB = 0.0;

    auto fields() const { return std::tie(totalGB, freeGB); }
    bool operator==(const DiskSnapshot&) const = default;
};

/// One whole sample of the machine.
struct SystemSnapshot {
    MemorySnapshot memory;
    DiskSnapshot disk;
    double cpuPercent = 0.0;  ///< whole machine, 0 to 100
    std::vector<ProcessSample> topProcesses;
    std::vector<AppImpact> appImpacts;
    std::string pressureText;
    Date sampledAt;

    auto fields() const {
        return std::tie(memory, disk, cpuPercent, topProcesses, appImpacts, pressureText,
                        sampledAt);
    }
    bool operator==(const SystemSnapshot&) const = default;
};

/// A plain-language reading of the current sample. Identity: `id`.
struct Recommendation {
    enum class Severity { info, caution, urgent };

    UUID id;
    std::string title;
    std::string detail;
    Severity severity = Severity::info;
    std::optional<std::int64_t> relatedPID;

    auto fields() const { return std::tie(id, title, detail, severity, relatedPID); }
    bool operator==(const Recommendation&) const = default;
};

/// The displayed name of a severity, which is also its raw value.
std::string_view title(Recommendation::Severity severity);

/// One point of the session timeline. Identity: `id`. Persisted.
struct HistoryPoint {
    UUID id;
    Date date;
    double cpu = 0.0;
    double memory = 0.0;

    auto fields() const { return std::tie(id, date, cpu, memory); }
    bool operator==(const HistoryPoint&) const = default;
};

/// A short fact about the current run. Identity: `id`.
struct SessionInsight {
    enum class Kind { starting, peakCPU, peakMemory, topApp, remoteWatch, remoteRepeater };

    UUID id;
    std::string title;
    std::string value;
    std::string detail;
    Kind kind = Kind::starting;
    std::optional<Date> sampledAt = {};  ///< of a figure that may be older than the other facts

    auto fields() const { return std::tie(id, title, value, detail); }
    bool operator==(const SessionInsight&) const = default;
};

/// A change that waits for the owner's explicit confirmation. Identity: `id`.
struct ConfirmationRequest {
    UUID id;
    std::string title;
    std::string message;
    std::string confirmTitle;
    std::string kind;
    std::optional<std::string> hostName;
    std::optional<std::int64_t> pid;

    auto fields() const { return std::tie(id, title, message, confirmTitle, kind, hostName, pid); }
    bool operator==(const ConfirmationRequest&) const = default;
};

}  // namespace tallowcrest
