#pragma once

#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "remote/remote_app_impact.h"

namespace tallowcrest {

/// A machine that answered the scan 130 seconds ago, with two processes: 700 may be asked to quit,
/// 88 is a part of its system.
inline RemoteHealthFacts reachableMachine() {
    RemoteHealthFacts facts;
    RemoteHealth& machine = facts.machine;
    machine.id = "n1";
    machine.hostName = "studio-mac";
    machine.address = "100.64.0.7";
    machine.online = true;
    machine.status = RemoteHealth::Status::reachable;
    machine.cpuPercent = 12.4;
    machine.memoryPercent = 41.0;
    machine.osVersion = "14.5";
    machine.topCPUProcess = "92.1% /usr/local/bin/yes";
    machine.topMemoryProcess = "2048MB /Applications/Xcode.app/Contents/MacOS/Xcode";
    machine.topProcesses = {
        {700, 92.14, 1240.4, "/usr/local/bin/yes"},
        {88, 31.0, 350.0, "/System/Library/CoreServices/loginwindow.app/loginwindow"}};
    machine.appImpacts = remoteAppImpacts(machine.topProcesses, {}, false);
    machine.recommendation = "Remote Mac looks healthy. No remote optimization action is needed.";
    machine.setupHint = "SSH is configured and remote metrics are available.";
    machine.sampledAt = {1000.0};
    facts.profile = {machine.hostName, machine.hostName, "Mac", 80.0, false};
    facts.now = {1130.0};
    return facts;
}

/// The same machine after a scan that failed.
inline RemoteHealthFacts unreachableMachine(RemoteHealth::Status status) {
    RemoteHealthFacts facts = reachableMachine();
    RemoteHealth& machine = facts.machine;
    machine.online = false;
    machine.status = status;
    machine.cpuPercent.reset();
    machine.memoryPercent.reset();
    machine.osVersion.reset();
    machine.topCPUProcess.reset();
    machine.topMemoryProcess.reset();
    machine.topProcesses.clear();
    machine.appImpacts.clear();
    machine.recommendation = "What to do next.";
    machine.setupHint = "How to repair access.";
    return facts;
}

}  // namespace tallowcrest
