#include "app/composition.h"

#include <filesystem>
#include <utility>

#include "actions/cache_purge.h"
#include "app/console.h"
#include "core/activity_log.h"
#include "core/settings/settings_keys.h"
#include "platform/host.h"
#include "platform/icu/icu_locale.h"
#include "platform/icu/utc_offset.h"

namespace tallowcrest {
namespace {

std::filesystem::path settingsFile() {
    const std::filesystem::path folder = host::dataDirectory();
    return folder.empty() ? folder : folder / "settings.sqlite";
}

OpenedStore openSettings(SettingsAccess access, Jobs& jobs, const Clock& clock,
                         SqliteSettingsStore::Complain complain) {
    if (access == SettingsAccess::keep) {
        return openSettingsStore(settingsFile(), {jobs, clock, std::move(complain)});
    }
    OpenedStore opened = readSettingsStore(settingsFile());
    // What another run saw, perhaps days ago, must not pass for what this one sees.
    opened.store->write(settings_keys::historyKey, JSONData{"[]"});
    return opened;
}

}  // namespace

Composition::Composition(MainQueue& mainQueue, SettingsAccess access,
                         std::vector<std::string> processArguments, DesktopServices desktop)
    : workQueue_(host::lowerThreadPriority),
      jobs_(mainQueue, workQueue_),
      ownJobs_(jobs_),
      settings_(openSettings(access, jobs_, clock_,
                             [this](const std::string& problem) { reportFailedWrite(problem); })) {
    for (const std::string& problem : settings_.problems) {
        complain(printableText(problem).text);
    }
    const MonitorPorts ports{
        jobs_,
        clock_,
        *settings_.store,
        host::makeMetricsReader(toolLauncher_),
        host::makeTickSource(),
        std::make_shared<IcuLocale>(localeNamesOfThisProcess()),
        {{host::makeProcessControl(toolLauncher_),
          desktop.makeGracefulQuit ? desktop.makeGracefulQuit(toolLauncher_) : nullptr,
          std::make_shared<ToolCachePurge>(host::allowedExecutables(), toolLauncher_,
                                           host::purgeTools())},
         std::move(desktop.openActivityMonitor),
         std::move(desktop.storeOnPasteboard)},
        std::make_shared<PosixReportFolder>(host::reportsDirectory, std::move(desktop.revealFile)),
        utcOffsetOfThisMachine,
        desktop.notifications,
        std::move(desktop.openRoute)};
    monitor_.emplace(ports, HostFacts{.cpuCount = host::activeProcessorCount(),
                                      .protection = host::protectionPolicy(),
                                      .loginName = host::loginName(),
                                      .startupProblems = settings_.problems,
                                      .places = host::places(),
                                      .findings = {.processArguments = std::move(processArguments)},
                                      .onlyLooks = access == SettingsAccess::look});
}

void Composition::reportFailedWrite(const std::string& problem) {
    complain(printableText(problem).text);
    // On a later turn, because a message is itself a write.
    ownJobs_.postToMain([this, problem] {
        if (monitor_) {
            monitor_->log().recordMessage(problem);
        }
    });
}

bool Composition::shutDown() {
    constexpr std::chrono::milliseconds longestToolDeadline{2000};
    toolLauncher_.requestStop();
    jobs_.stopAll();
    // A sample under way may still call what the monitor's components gave it.
    if (!workQueue_.finishWithin(longestToolDeadline)) {
        return false;
    }
    monitor_.reset();
    return true;
}

}  // namespace tallowcrest
