#include "remote/remote_requests.h"

#include <string>

#include <fmt/format.h>

namespace tallowcrest::remote_requests {

ConfirmationRequest purge(std::string_view hostName, std::string_view nickname, bool isLinux) {
    return {.id = UUID::random(),
            .title = fmt::format("Purge caches on {}?", nickname.empty() ? hostName : nickname),
            .message = fmt::format("Tallowcrest will {} over SSH on {}. This is reversible only by "
                                   "normal {}cache refill.",
                                   isLinux ? "drop file caches" : "run purge", hostName,
                                   isLinux ? "" : "macOS "),
            .confirmTitle = "Remote Purge",
            .kind = std::string(purgeKind),
            .hostName = std::string(hostName),
            .pid = {}};
}

ConfirmationRequest quitProcess(std::string_view hostName, const RemoteProcess& process) {
    return {.id = UUID::random(),
            .title = fmt::format("Quit {} on {}?", process.displayName(), hostName),
            .message = fmt::format("Tallowcrest will send TERM to PID {} over SSH. Unsaved remote "
                                   "work may be lost.",
                                   process.pid),
            .confirmTitle = "Quit Remote Process",
            .kind = std::string(quitProcessKind),
            .hostName = std::string(hostName),
            .pid = process.pid};
}

}  // namespace tallowcrest::remote_requests
