#include "app/composition.h"

#include <utility>

#include "platform/host.h"

namespace tallowcrest {

Composition::Composition(MainQueue& mainQueue, std::vector<std::string> processArguments,
                         MonitorExtensions extensions)
    : workQueue_(host::lowerThreadPriority) {
    const MonitorPorts ports{mainQueue,
                             workQueue_,
                             clock_,
                             settingsStore_,
                             host::makeMetricsReader(toolLauncher_),
                             host::makeTickSource()};
    monitor_.emplace(ports,
                     HostFacts{host::activeProcessorCount(), host::protectionPolicy(),
                               host::loginName(), std::move(processArguments)},
                     std::move(extensions));
}

bool Composition::shutDown() {
    constexpr std::chrono::milliseconds longestToolDeadline{2000};
    monitor_.reset();
    toolLauncher_.requestStop();
    return workQueue_.finishWithin(longestToolDeadline);
}

}  // namespace tallowcrest
