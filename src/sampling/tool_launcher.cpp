#include "sampling/tool_launcher.h"

#include <utility>

#include "core/text.h"

namespace tallowcrest {

std::string launchForText(ToolLauncher& launcher, const ToolRequest& request) {
    ToolResult result = launcher.launch(request);
    // Dropped rather than repaired: figures from a damaged output would be taken for real ones.
    if (!result.launched || !isValidUTF8(result.output)) {
        return {};
    }
    return std::move(result.output);
}

}  // namespace tallowcrest
