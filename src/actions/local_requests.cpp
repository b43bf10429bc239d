#include "actions/local_requests.h"

#include <fmt/format.h>

namespace tallowcrest::local_requests {

ConfirmationRequest quitProcess(std::string_view name, std::int64_t pid) {
    return {.id = UUID::random(),
            .title = fmt::format("Quit {}?", name),
            .message = fmt::format("Tallowcrest will send TERM to PID {}. Unsaved work may be lost "
                                   "if the app cannot close cleanly.",
                                   pid),
            .confirmTitle = "Quit Process",
            .kind = std::string(quitProcessKind),
            .hostName = {},
            .pid = pid};
}

ConfirmationRequest quitApp(std::string_view group) {
    return {.id = UUID::random(),
            .title = fmt::format("Quit {}?", group),
            .message = fmt::format("Tallowcrest will ask {} to quit gracefully, then may send TERM "
                                   "to visible helper processes if needed. Review unsaved work "
                                   "first.",
                                   group),
            .confirmTitle = "Quit App Group",
            .kind = std::string(quitAppKind),
            .hostName = std::string(group),
            .pid = {}};
}

ConfirmationRequest purge() {
    return {.id = UUID::random(),
            .title = "Purge file caches?",
            .message =
                "macOS will clear reclaimable file caches. This is usually safe, but apps "
                "may reload data afterward.",
            .confirmTitle = "Purge Caches",
            .kind = std::string(purgeKind),
            .hostName = {},
            .pid = {}};
}

std::string quitProcessStep(std::string_view name) {
    return fmt::format("3. Confirm the quit action for {}, or cancel and keep reviewing.", name);
}

std::string quitAppStep(std::string_view group) {
    return fmt::format("3. Confirm the app-group quit for {}, or cancel and keep reviewing.",
                       group);
}

std::string purgeStep() {
    return "3. Confirm cache purge, or cancel and keep reviewing.";
}

}  // namespace tallowcrest::local_requests
