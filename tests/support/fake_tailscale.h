#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "remote/tailnet_reading.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// The client of the tailnet: its command line tool, which is installed and prints what a test
/// sets, and its daemon, which does not answer unless a test sets an answer.
class FakeTailscale final : public ToolLauncher {
public:
    ToolResult launch(const ToolRequest& request) override {
        requests.push_back(request);
        ToolResult result;
        result.launched = true;
        result.output = request.arguments.size() > 1 ? json : text;
        result.terminationStatus = 0;
        return result;
    }

    TailscaleDaemon daemon() {
        return [this](std::string_view request, const std::stop_token& /*stop*/) {
            daemonRequests.emplace_back(request);
            return answer;
        };
    }

    TemporaryFolder folder;
    std::string cli = folder.file("tailscale", "", 0755);
    CommandSafetyPolicy::AllowedExecutables allowed{cli};
    std::string json;                   ///< of "status --json"
    std::string text;                   ///< of "status"
    std::optional<std::string> answer;  ///< of the daemon
    std::vector<ToolRequest> requests;
    std::vector<std::string> daemonRequests;
};

}  // namespace tallowcrest
