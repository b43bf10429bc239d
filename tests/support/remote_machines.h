#pragma once

#include <string>
#include <utility>
#include <vector>

#include "actions/desktop_actions.h"
#include "actions/tool_runner.h"
#include "core/remote_records.h"
#include "core/services.h"
#include "remote/remote_scan.h"
#include "remote/tailnet.h"
#include "tests/support/fake_tool_launcher.h"

namespace tallowcrest {

inline TailDevice tailDevice(std::string os, bool online) {
    TailDevice device;
    device.os = std::move(os);
    device.online = online;
    return device;
}

/// A machine that is online, has a path and this one address.
inline TailDevice onlineMachine(const std::string& name, const std::string& address,
                                const std::string& os = "macOS") {
    return {.id = "nodekey:" + name,
            .name = name,
            .hostName = name,
            .online = true,
            .addresses = {address},
            .os = os,
            .inMagicSock = true};
}

/// Other machines that a test sets, and the scan of them over a secure shell that is not run.
struct RemoteMachines {
    explicit RemoteMachines(const Services& services)
        : tools(CommandSafetyPolicy::linuxExecutables(), launcher, services.jobs, services.log),
          pasteboard(services.log, {}),
          tailnet(services, {tools, services.locale, {}, {}}, pasteboard),
          scan(services, tailnet, tools) {}

    void setDevices(std::vector<TailDevice> devices) {
        tailnet.publish({std::move(devices), tailnet.state().tailscaleHealthIssues});
    }

    FakeToolLauncher launcher;
    ToolRunner tools;
    Pasteboard pasteboard;
    Tailnet tailnet;
    RemoteScan scan;
};

}  // namespace tallowcrest
