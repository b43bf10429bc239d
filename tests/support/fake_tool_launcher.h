#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Launches nothing; records the requests and returns `result` for each.
class FakeToolLauncher final : public ToolLauncher {
public:
    ToolResult launch(const ToolRequest& request) override {
        requests.push_back(request);
        if (onLaunch) {
            onLaunch(request);
        }
        return result;
    }

    /// A tool that wrote `output` and exited with 0.
    void willWrite(std::string output) {
        result = ToolResult{};
        result.launched = true;
        result.output = std::move(output);
        result.terminationStatus = 0;
    }

    ToolResult result;
    std::vector<ToolRequest> requests;
    /// Called at each launch, and may set its result; absent unless a test sets it.
    std::function<void(const ToolRequest&)> onLaunch;
};

}  // namespace tallowcrest
