#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/remote_records.h"

namespace tallowcrest {

/// The peers of a tailnet, the Macs first: every third one is connected directly, every third one
/// over a relay, and the others have no path.
inline std::vector<TailDevice> fleetPeers(std::size_t count) {
    std::vector<TailDevice> peers;
    for (std::size_t i = 0; i < count; ++i) {
        peers.push_back({.id = fmt::format("nodekey:{:08x}", i),
                         .name = fmt::format("mac-{}.tail1a2b3.ts.net", i + 1),
                         .hostName = fmt::format("mac-{}", i + 1),
                         .online = i < 40,
                         .addresses = {fmt::format("100.64.{}.{}", i / 200, i % 200 + 1)},
                         .os = i < 40 ? "macOS" : "linux",
                         .active = i < 40 && i % 3 != 2,
                         .currentAddress = i % 3 == 0 ? "192.0.2.17:41641" : "",
                         .relay = "fra"});
    }
    return peers;
}

/// What a scan of the first `count` of these peers found at `now`: of each four, the second is not
/// reachable, up to `troubled` of them; the third has much memory in use.
inline std::vector<RemoteHealth> fleetHealth(std::size_t count, std::size_t troubled, Date now) {
    using Status = RemoteHealth::Status;
    constexpr Status failures[]{Status::authNeeded, Status::connectionBlocked, Status::hostKeyIssue,
                                Status::noTailnetPath};
    std::vector<RemoteHealth> machines;
    for (std::size_t i = 0; i < count; ++i) {
        RemoteHealth machine{.id = fmt::format("nodekey:{:08x}", i),
                             .hostName = fmt::format("mac-{}", i + 1),
                             .address = fmt::format("100.64.{}.{}", i / 200, i % 200 + 1),
                             .sampledAt = now};
        if (i % 4 == 1 && i / 4 < troubled) {
            machine.status = failures[i / 4 % std::size(failures)];
            machine.recommendation =
                "Install this Mac's SSH public key on the remote account, then scan again.";
            machine.setupHint = "Use Copy Key Install, run it in Terminal, and scan again.";
        } else {
            machine.online = true;
            machine.status = Status::reachable;
            machine.cpuPercent = 4.0 + static_cast<double>(i * 37 % 60);
            machine.memoryPercent = i == 2 ? 93.0 : 35.0 + static_cast<double>(i * 17 % 40);
            machine.osVersion = "14.5";
            machine.topCPUProcess = "31.2% /opt/indexer/photo-indexer";
            machine.topMemoryProcess = "2210MB /Applications/Editor.app/Contents/MacOS/Editor";
            for (int p = 0; p < 5; ++p) {
                machine.topProcesses.push_back({.pid = 500 + p,
                                                .cpu = 31.2 - 6.0 * p,
                                                .rssMB = 2210.0 - 400.0 * p,
                                                .command = fmt::format("/opt/tool-{}/worker", p)});
                machine.appImpacts.push_back({.name = fmt::format("worker-{}", p),
                                              .processCount = p + 1,
                                              .totalCPU = 31.2 - 6.0 * p,
                                              .totalMemoryMB = 2210.0 - 400.0 * p,
                                              .topPID = 500 + p});
            }
            machine.recommendation =
                i == 2 ? "Memory pressure is high. Quit the heaviest app or purge the file caches."
                       : "No action is needed.";
        }
        machines.push_back(std::move(machine));
    }
    return machines;
}

}  // namespace tallowcrest
