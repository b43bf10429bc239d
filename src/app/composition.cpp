#include "app/composition.h"

#include <filesystem>
#include <utility>

#include "app/console.h"
#include "core/settings_keys.h"
#include "platform/host.h"
#include "platform/icu/icu_locale.h"
#include "platform/icu/utc_offset.h"

namespace tallowcrest {
namespace {

std::filesystem::path settingsFile() {
    const std::filesystem::path folder = host::dataDirectory();
    return folder.empty() ? folder : folder / "settings.sqlite";
}

OpenedStore openSettings(SettingsAccess access, WorkQueue& workQueue, const Clock& clock,
                         SqliteSettingsStore::Complain complain) {
    if (access == SettingsAccess::keep) {
        return openSettingsStore(settingsFile(), {workQueue, clock, std::move(complain)});
    }
    OpenedStore opened = readSettingsStore(settingsFile());
    // What another run saw, perhaps days ago, must not pass for what this one sees.
    opened.store->write(settings_keys::historyKey, JSONData{"[]"});
    return opened;
}

}  // namespace

Composition::Composition(MainQueue& mainQueue, SettingsAccess access,
                         std::vector<std::string> processArguments, MonitorExtensions extensions,
                         DesktopServices desktop)
    : self_(std::make_shared<Composition*>(this)),
      workQueue_(host::lowerThreadPriority),
      settings_(openSettings(access, workQueue_, clock_, tellerOfFailedWrites(mainQueue))) {
    for (const std::string& problem : settings_.problems) {
        complain(printableText(problem).text);
    }
    const MonitorPorts ports{
        mainQueue,
        workQueue_,
        clock_,
        *settings_.store,
        host::makeMetricsReader(toolLauncher_),
        host::makeTickSource(),
        std::make_shared<IcuLocale>(localeNamesOfThisProcess()),
        {host::makeProcessControl(toolLauncher_),
         desktop.makeGracefulQuit ? desktop.makeGracefulQuit(toolLauncher_) : nullptr,
         std::make_shared<ToolCachePurge>(host::allowedExecutables(), toolLauncher_,
                                          host::purgeTools())},
        std::make_shared<PosixReportFolder>(host::reportsDirectory, std::move(desktop.revealFile)),
        utcOffsetOfThisMachine,
        desktop.notifications};
    monitor_.emplace(
        ports,
        HostFacts{host::activeProcessorCount(), host::protectionPolicy(), host::loginName(),
                  std::move(processArguments), settings_.problems, host::places()},
        std::move(extensions));
}

SqliteSettingsStore::Complain Composition::tellerOfFailedWrites(MainQueue& mainQueue) const {
    return [&mainQueue, weakSelf = std::weak_ptr(self_)](const std::string& problem) {
        complain(printableText(problem).text);
        // On a later turn, for a message is itself a write.
        mainQueue.post([weakSelf, problem] {
            if (const auto self = weakSelf.lock(); self && (*self)->monitor_) {
                (*self)->monitor_->log().recordMessage(problem);
            }
        });
    };
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
