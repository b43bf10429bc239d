#include "sampling/tool_launcher.h"

#include <utility>

#include "core/utf8.h"

namespace tallowcrest {

std::string launchForText(ToolLauncher& launcher, const ToolRequest& request) {
    ToolResult result = launcher.launch(request);
    // Dropped whole rather than repaired: half-right figures would be parsed and believed.
    if (!result.launched || !isValidUTF8(result.output)) {
        return {};
    }
    return std::move(result.output);
}

}  // namespace tallowcrest
