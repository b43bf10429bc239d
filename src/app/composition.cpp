#include "app/composition.h"

#include <filesystem>
#include <utility>

#include "app/console.h"
#include "platform/host.h"
#include "platform/icu/icu_locale.h"

namespace tallowcrest {

namespace {

std::filesystem::path settingsFile() {
    const std::filesystem::path folder = host::dataDirectory();
    return folder.empty() ? folder : folder / "settings.sqlite";
}

OpenedStore openSettings(SettingsAccess access, WorkQueue& workQueue, const Clock& clock) {
    return access == SettingsAccess::look
               ? readSettingsStore(settingsFile())
               : openSettingsStore(settingsFile(),
                                   {workQueue, clock, [](const std::string& problem) {
                                        complain(printableText(problem).text);
                                    }});
}

}  // namespace

Composition::Composition(MainQueue& mainQueue, SettingsAccess access,
                         std::vector<std::string> processArguments, MonitorExtensions extensions)
    : workQueue_(host::lowerThreadPriority), settings_(openSettings(access, workQueue_, clock_)) {
    for (const std::string& problem : settings_.problems) {
        complain(printableText(problem).text);
    }
    const MonitorPorts ports{mainQueue,
                             workQueue_,
                             clock_,
                             *settings_.store,
                             host::makeMetricsReader(toolLauncher_),
                             host::makeTickSource(),
                             std::make_shared<IcuLocale>(localeNamesOfThisProcess())};
    monitor_.emplace(ports,
                     HostFacts{host::activeProcessorCount(), host::protectionPolicy(),
                               host::loginName(), std::move(processArguments), settings_.problems},
                     std::move(extensions));
}

bool Composition::shutDown() {
    constexpr std::chrono::milliseconds longestToolDeadline{2000};
    toolLauncher_.requestStop();
    // A sample under way may still call what the monitor's components gave it.
    if (!workQueue_.finishWithin(longestToolDeadline)) {
        return false;
    }
    monitor_.reset();
    return true;
}

}  // namespace tallowcrest
