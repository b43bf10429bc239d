#include "app/composition.h"

#include <system_error>
#include <utility>

#include "actions/cache_purge.h"
#include "app/console.h"
#include "core/activity_log.h"
#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "platform/base/environment.h"
#include "platform/base/local_public_key.h"
#include "platform/files/file_copy_posix.h"
#include "platform/files/file_walk_posix.h"
#include "platform/files/largest_files_search_posix.h"
#include "platform/files/volume_of.h"
#include "platform/host.h"
#include "platform/locale/posix_locale.h"
#include "platform/settings/settings_file.h"

namespace tallowcrest {
namespace {

std::filesystem::path settingsFile() {
    const std::filesystem::path folder = host::dataDirectory();
    return folder.empty() ? folder : folder / "settings.sqlite";
}

/// A file that is missing has the earliest time.
SettingsTimes timesOf(const std::filesystem::path& name) {
    // The log lies beside the target of a link.
    const std::filesystem::path file = settings_file::resolveLink(name);
    std::error_code ignored;
    return {std::filesystem::last_write_time(file, ignored),
            std::filesystem::last_write_time(file.native() + "-wal", ignored)};
}

OpenedStore openSettings(SettingsAccess access, Jobs& jobs, const Clock& clock,
                         SqliteSettingsStore::ReportOutage reportOutage) {
    if (access == SettingsAccess::readWrite) {
        return openSettingsStore(settingsFile(), {jobs, clock, std::move(reportOutage)});
    }
    // Points of days ago must not be taken for those of this run.
    return readSettingsStore(settingsFile(), {settings_keys::historyKey});
}

/// Without the owner's settings to write, only what reads.
DiskPorts diskPorts(SettingsAccess access, const Clock& clock, DesktopServices& desktop) {
    DiskPorts ports{
        .largestFiles = std::make_shared<PosixLargestFilesSearch>(host::lowerThreadPriority),
        .places = host::diskPlaces(),
        .desktop = std::move(desktop.disk),
        .volumeOf = volumeOf};
    if (access == SettingsAccess::readWrite) {
        ports.walk = std::make_shared<PosixFileWalk>();
        ports.trash =
            desktop.makeTrash ? desktop.makeTrash(clock, utcOffsetOfThisMachine) : nullptr;
        ports.copy = std::make_shared<PosixFileCopy>();
    }
    return ports;
}

}  // namespace

Composition::Composition(MainQueue& mainQueue, SettingsAccess access, DesktopServices desktop,
                         std::function<void()> sampleApplied)
    : workQueue_(host::lowerThreadPriority),
      jobs_(mainQueue, workQueue_),
      ownJobs_(jobs_),
      settingsTimes_(timesOf(settingsFile())),
      settings_(openSettings(access, jobs_, clock_,
                             [this](const std::string& problem) { reportOutage(problem); })) {
    for (const std::string& problem : settings_.problems) {
        complain(printableText(problem).text);
    }
    if (!settings_.problems.empty()) {
        settingsTimes_.reset();
    }
    const auto publicKey = [] { return localPublicKey(userAccount().homeDirectory); };
    const auto reportFolder =
        std::make_shared<PosixReportFolder>(host::reportsDirectory, std::move(desktop.revealFile));
    const Places places = host::places();
    const MonitorPorts ports{
        .jobs = jobs_,
        .clock = clock_,
        .settingsStore = *settings_.store,
        .metrics = host::makeMetricsReader(toolLauncher_),
        .ticks = host::makeTickSource(),
        .processDetails = host::makeProcessDetailsReader(),
        .locale = desktop.locale ? std::move(desktop.locale)
                                 : std::make_shared<PosixLocale>(localeNamesOfThisProcess()),
        .actions = {.local = {.processes = host::makeProcessControl(toolLauncher_),
                              .gracefulQuit = desktop.makeGracefulQuit
                                                  ? desktop.makeGracefulQuit(toolLauncher_)
                                                  : nullptr,
                              .cachePurge = std::make_shared<ToolCachePurge>(
                                  host::allowedExecutables(), toolLauncher_, host::purgeTools())},
                    .desktop = std::move(desktop.actions)},
        .remote = {.launcher = toolLauncher_,
                   .allowed = host::allowedExecutables(),
                   .daemon = host::tailscaleDaemon(),
                   .tailscaleCLI = places.tailscaleCLI,
                   .actions = {.localPublicKey = publicKey,
                               .folder = reportFolder,
                               .portTest = places.portTest}},
        .reports = {.folder = reportFolder, .utcOffset = utcOffsetOfThisMachine},
        .advisor =
            desktop.makeAdvisorPorts ? desktop.makeAdvisorPorts(stop_.get_token()) : AdvisorPorts(),
        .disk = diskPorts(access, clock_, desktop),
        .integration = std::move(desktop.integration),
        .sampleApplied = std::move(sampleApplied)};
    monitor_.emplace(ports, HostFacts{.cpuCount = host::activeProcessorCount(),
                                      .protection = host::protectionPolicy(),
                                      .loginName = host::loginName(),
                                      .startupProblems = settings_.problems,
                                      .places = places,
                                      .hasLocalPublicKey = access == SettingsAccess::readWrite &&
                                                           publicKey().has_value(),
                                      .readOnly = access == SettingsAccess::readOnly});
    if (access == SettingsAccess::readWrite && !settings_.savingProblem.empty()) {
        monitor_->settingsOwner().setSavingProblem(settings_.savingProblem);
    }
}

void Composition::reportOutage(const std::string& problem) {
    const std::string message = problem.empty() ? "Settings are saved again." : problem;
    complain(printableText(message).text);
    // On a later turn, because a message is itself a write.
    ownJobs_.postToMain([this, problem, message] {
        if (monitor_) {
            monitor_->settingsOwner().setSavingProblem(problem);
            monitor_->log().recordMessage(message);
        }
    });
}

void Composition::followWarningThreshold() {
    constexpr int samplesBetween = 15;
    if (++samples_ % samplesBetween != 0) {
        return;
    }
    const std::filesystem::path file = settingsFile();
    const SettingsTimes times = timesOf(file);
    if (times == settingsTimes_) {
        return;
    }
    const OpenedStore now = readStoredKey(file, settings_keys::thresholdKey);
    // A file that cannot be read at this moment is tried again, even if nobody changes it.
    if (!now.problems.empty()) {
        return;
    }
    settingsTimes_ = times;
    const SettingsOwner asAtStart(*now.store, jobs_.mainQueue(), {});
    monitor_->settingsOwner().set(&Settings::warningThreshold, asAtStart.values().warningThreshold);
}

Composition::~Composition() {
    while (!shutDown()) {
    }
}

bool Composition::shutDown(std::chrono::milliseconds timeout) {
    stop_.request_stop();
    toolLauncher_.requestStop();
    const bool areChangesWhole = jobs_.stopAll(timeout);
    // Before a job that hangs can end the program without the monitor's destruction.
    if (monitor_) {
        monitor_->disk().autopilot.recordUnfinished();
        monitor_->disk().files.recordUnfinished();
    }
    // No component is destroyed while one of its jobs is running.
    if (!areChangesWhole || !workQueue_.finishWithin(timeout)) {
        return false;
    }
    if (monitor_) {
        monitor_->disk().files.recordUnfinished();
    }
    monitor_.reset();
    return true;
}

}  // namespace tallowcrest
