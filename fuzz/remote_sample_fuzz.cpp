#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "remote/remote_commands.h"
#include "remote/remote_health_record.h"
#include "remote/remote_sample.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest;

/// Nothing of a name has a meaning for a shell.
void checkQuit(const RemoteProcess& row) {
    const std::optional<std::string> quit = remote_commands::quit(row, true);
    if (!quit) {
        return;
    }
    constexpr std::string_view before = "env LC_ALL=C grep -qx -e ";
    require(quit->starts_with(before));
    const std::string_view rest = std::string_view(*quit).substr(before.size());
    const std::string_view pattern = rest.substr(0, rest.find(" /proc/"));
    require(pattern.size() == row.command.size());
    require(pattern.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                      "0123456789-_.") == pattern.npos);
}

void checkSample(std::string_view output) {
    const RemoteSample sample = parseRemoteSample(output);
    require(sample.values.size() <= maximumRemoteValues);
    for (const auto& [key, value] : sample.values) {
        require(!key.empty() && !value.empty());
        require(key.find('=') == key.npos && key.find('\n') == key.npos);
        require(value.find('\n') == value.npos);
    }
    require(sample.processes.size() <= maximumRemoteProcesses);
    for (const RemoteProcess& row : sample.processes) {
        require(std::isfinite(row.cpu) && std::isfinite(row.rssMB));
        require(row.command.find('\n') == row.command.npos);
        checkQuit(row);
    }
    require(!sample.cpuPercent() || *sample.cpuPercent() <= 100.0);
    require(!sample.memoryPercent() || std::isfinite(*sample.memoryPercent()));
}

void checkGroups(const RemoteHealth& record) {
    std::int64_t rows = 0;
    for (const RemoteAppImpact& group : record.appImpacts) {
        require(group.processCount >= 1 && group.topPID.has_value());
        require(group.protectedCount >= 0 && group.protectedCount <= group.processCount);
        require(std::isfinite(group.totalCPU) && std::isfinite(group.totalMemoryMB));
        rows += group.processCount;
    }
    require(rows == static_cast<std::int64_t>(record.topProcesses.size()));
}

}  // namespace

/// Whatever the other side prints, the record is complete and its figures are finite.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    checkSample(output);
    for (const bool isLinux : {false, true}) {
        const RemoteHealth record =
            remoteHealthRecord({.id = "key", .hostName = "host"}, "100.1.2.3", output,
                               {"owner", {"Docker"}, false}, {}, isLinux);
        require(record.online == (record.cpuPercent || record.memoryPercent));
        require(record.online == (record.status == RemoteHealth::Status::reachable));
        require(!record.summary.empty() && !record.setupHint.empty() &&
                !record.recommendation.empty());
        checkGroups(record);
    }
    return 0;
}
