#include "actions/local_actions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "actions/app_group.h"
#include "actions/cache_purge.h"
#include "actions/command_validators.h"
#include "actions/confirmation_desk.h"
#include "actions/graceful_quit.h"
#include "actions/local_requests.h"
#include "actions/process_control.h"
#include "actions/review_target.h"
#include "core/activity_log.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr const char* invalidRequest = "Blocked an invalid process termination request.";

std::vector<std::string> distinctPaths(const std::vector<ProcessSample>& rows) {
    std::vector<std::string> paths;
    for (const ProcessSample& row : rows) {
        if (std::find(paths.begin(), paths.end(), row.command) == paths.end()) {
            paths.push_back(row.command);
        }
    }
    return paths;
}

}  // namespace

LocalActions::LocalActions(Dependencies dependencies)
    : with_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(with_.services.mainQueue)),
      jobs_(with_.services.jobs) {
    with_.confirmations.registerKind(
        std::string(local_requests::quitProcessKind),
        {[this](const ConfirmationRequest& request) { quitProcess(request); },
         [this](const ConfirmationRequest&) { reviewed_ = {}; }});
    with_.confirmations.registerKind(std::string(local_requests::quitAppKind),
                                     {[this](const ConfirmationRequest& request) {
                                          if (request.hostName) {
                                              quitAppGroup(*request.hostName);
                                          }
                                      },
                                      {}});
    with_.confirmations.registerKind(std::string(local_requests::purgeKind),
                                     {[this](const ConfirmationRequest&) { runPurge(); }, {}});
}

LocalActions::~LocalActions() = default;

Outcome LocalActions::requestQuitSelectedProcess() {
    const std::optional<std::int64_t> pid = with_.review.selectedPID();
    if (!pid) {
        return record(Outcome::refused("Select a process first."));
    }
    const ProcessSample* row = with_.review.selectedRow();
    if (row != nullptr && with_.review.isProtectedTarget(*row)) {
        return record(Outcome::refused(
            fmt::format("Refused to quit protected process {}.", row->displayName())));
    }
    const std::string name =
        row != nullptr ? std::string(row->displayName()) : fmt::format("process {}", *pid);
    ConfirmationRequest request = local_requests::quitProcess(name, *pid);
    // If the process is no longer in the table, the path and start time of the reviewed row.
    const std::string& path = row != nullptr ? row->command : with_.review.selectedCommand();
    const std::uint64_t startTime =
        row != nullptr ? row->startTime : with_.review.selectedStartTime();
    // The process is no longer in the table and its start time was never known, so its pid may
    // belong to another process by now.
    const bool isUnidentifiable = row == nullptr && startTime == 0 && !path.empty();
    reviewed_ = {request.id, nullptr};
    if (CommandSafetyPolicy::validatedPID(*pid) && !isUnidentifiable) {
        // With a start time of 0 this holds whichever process has the pid now: the row had no start
        // time, or there never was a row.
        reviewed_.process = with_.ports.processes->hold(*pid, startTime);
    }
    with_.confirmations.requestConfirmation(
        std::move(request), path.empty() ? std::vector<std::string>() : std::vector{path});
    with_.review.setOptimizeStep(local_requests::quitProcessStep(name));
    return Outcome::asked();
}

void LocalActions::quitProcess(const ConfirmationRequest& request) {
    if (!request.pid) {
        return;
    }
    const std::int64_t pid = *request.pid;
    Reviewed reviewed = std::exchange(reviewed_, {});
    if (reviewed.request != request.id || reviewed.process == nullptr) {
        record(Outcome::refused(invalidRequest));
        return;
    }
    const TerminationResult result = reviewed.process->terminate();
    switch (result.outcome) {
        case TerminationResult::Outcome::blocked:
            record(Outcome::refused(invalidRequest));
            return;
        case TerminationResult::Outcome::failed:
            record(
                Outcome::failed(fmt::format("Could not quit process {}: {}", pid, result.error)));
            return;
        case TerminationResult::Outcome::asked:
            record(Outcome::done(fmt::format("Asked process {} to quit.", pid)));
            break;
        case TerminationResult::Outcome::refused:
            record(Outcome::failed(
                fmt::format("Could not quit process {}. It may be protected.", pid)));
            break;
    }
    with_.refresh();
}

Outcome LocalActions::requestQuitSelectedApp() {
    std::optional<std::string> group = with_.review.selectedAppImpactName();
    const auto& snapshot = with_.sample.snapshot();
    if (!group && snapshot && !snapshot->appImpacts.empty()) {
        group = snapshot->appImpacts.front().name;
    }
    if (!group) {
        return record(Outcome::refused("Select an app group first."));
    }
    if (neverQuit().contains(*group)) {
        return record(
            Outcome::refused(fmt::format("Refused to quit protected app group {}.", *group)));
    }
    const std::vector<ProcessSample> members =
        visibleMembers(with_.sample.latestProcesses(), *group, neverQuit(), with_.protection);
    if (members.empty()) {
        return record(Outcome::refused(fmt::format("No visible processes found for {}.", *group)));
    }
    with_.confirmations.requestConfirmation(local_requests::quitApp(*group),
                                            distinctPaths(members));
    with_.review.setOptimizeStep(local_requests::quitAppStep(*group));
    return Outcome::asked();
}

void LocalActions::quitAppGroup(const std::string& group) {
    const auto [entry, isNew] = membersOfAskedGroups_.try_emplace(group);
    if (!isNew) {
        // Asked a second time, the application may have closed its windows already, and would get
        // TERM while it is still saving.
        record(Outcome::refused(fmt::format("{} is still being asked to quit.", group)));
        return;
    }
    entry->second = membersForTerm(group);
    if (with_.ports.gracefulQuit == nullptr) {
        finishAppGroup(group, false);
        return;
    }
    // A group that was put on the Never Quit list meanwhile is still asked, because the owner
    // confirmed it by its name, but its processes get no TERM.
    std::vector<ProcessSample> members =
        visibleMembers(with_.sample.latestProcesses(), group, {}, with_.protection);
    // In the background, because an application may take long to answer.
    jobs_.run(
        Lane::actions,
        [quit = with_.ports.gracefulQuit, group, members = std::move(members)](const Stop&) {
            return quit->gracefulAppQuit(group, members);
        },
        [this, group](bool wasAsked) { finishAppGroup(group, wasAsked); });
}

std::vector<LocalActions::GroupMember> LocalActions::membersForTerm(const std::string& group) {
    std::vector<GroupMember> result;
    // From the current rows, because those shown with the request may have ended.
    for (ProcessSample& row :
         visibleMembers(with_.sample.latestProcesses(), group, neverQuit(), with_.protection)) {
        if (CommandSafetyPolicy::validatedPID(row.pid)) {
            // A pid may be reused while the application is asked. Only processes without a start
            // time, which nothing else identifies, are held: a group may have hundreds of members,
            // and each hold may take a descriptor.
            auto process = row.startTime == 0 ? with_.ports.processes->hold(row.pid, 0) : nullptr;
            result.push_back({std::move(row), std::move(process)});
        }
    }
    return result;
}

void LocalActions::finishAppGroup(const std::string& group, bool wasAskedGracefully) {
    std::vector<GroupMember> members = std::move(membersOfAskedGroups_[group]);
    membersOfAskedGroups_.erase(group);
    if (wasAskedGracefully) {
        record(Outcome::done(fmt::format("Asked {} to quit gracefully.", group)));
    } else {
        for (GroupMember& member : members) {
            // The Never Quit list may have changed while the application was asked.
            if (!isSafeTarget(member.row, neverQuit(), with_.protection)) {
                continue;
            }
            const auto process =
                member.process != nullptr
                    ? std::move(member.process)
                    : with_.ports.processes->hold(member.row.pid, member.row.startTime);
            // The result is ignored: a process that was not signalled stays in the next sample.
            process->terminate();
        }
        record(Outcome::done(fmt::format("Asked {}'s visible processes to quit.", group)));
    }
    with_.refresh();
}

Outcome LocalActions::requestPurge() {
    with_.confirmations.requestConfirmation(local_requests::purge());
    with_.review.setOptimizeStep(local_requests::purgeStep());
    return Outcome::asked();
}

void LocalActions::runPurge() {
    if (std::exchange(isPurging_, true)) {
        record(Outcome::refused("File caches are being purged already."));
        return;
    }
    observable_->changed();
    jobs_.run(
        Lane::actions, [purge = with_.ports.cachePurge](const Stop&) { return purge->purge(); },
        [this](const PurgeResult& result) { finishPurge(result); });
}

void LocalActions::finishPurge(const PurgeResult& result) {
    isPurging_ = false;
    observable_->changed();
    switch (result.outcome) {
        case PurgeResult::Outcome::blocked:
            record(Outcome::refused("Blocked an executable outside the command allowlist."));
            return;
        case PurgeResult::Outcome::failed:
            record(Outcome::failed(fmt::format("Could not run purge: {}", result.error)));
            return;
        case PurgeResult::Outcome::purged:
            record(
                Outcome::done("Purged reclaimable file caches. macOS may refill them as needed."));
            break;
        case PurgeResult::Outcome::refused:
            record(Outcome::failed("Purge was blocked by macOS."));
            break;
    }
    with_.refresh();
}

Outcome LocalActions::optimizeSafely() {
    const auto& snapshot = with_.sample.snapshot();
    if (!snapshot) {
        return record(Outcome::refused("No sample is available yet."));
    }
    const AppImpact* target = firstSafeGroup(snapshot->appImpacts, with_.sample.latestProcesses(),
                                             neverQuit(), with_.protection);
    if (target != nullptr) {
        with_.review.setTarget(*target->topPID, target->name);
    }
    const bool purges =
        with_.services.settings.values().warningThreshold <= snapshot->memory.pressure;
    if (purges) {
        requestPurge();
    }
    if (purges && target != nullptr) {
        return record(Outcome::asked(fmt::format(
            "Optimized safely: purged caches and selected {} for review.", target->name)));
    }
    if (purges) {
        return record(
            Outcome::asked("Optimized safely: purged caches. No safe app target was found."));
    }
    if (target != nullptr) {
        return record(Outcome::done(fmt::format(
            "Optimize Safely selected {}. Review it before quitting anything.", target->name)));
    }
    return record(Outcome::done("Optimize Safely found no safe action needed right now."));
}

Outcome LocalActions::toggleNeverQuit(const std::string& group) {
    ProtectedAppNames names = neverQuit();
    if (!names.insert(group).second) {
        return removeFromNeverQuit(group);
    }
    return setNeverQuit(std::move(names), fmt::format("{} added to Never Quit.", group));
}

Outcome LocalActions::removeFromNeverQuit(const std::string& group) {
    ProtectedAppNames names = neverQuit();
    if (names.erase(group) == 0) {
        return Outcome::refused({});
    }
    return setNeverQuit(std::move(names), fmt::format("{} removed from Never Quit.", group));
}

Outcome LocalActions::setNeverQuit(ProtectedAppNames names, std::string message) {
    with_.services.settings.set(&Settings::protectedAppNames, std::move(names));
    with_.sample.regroup(neverQuit(), with_.protection);
    return record(Outcome::done(std::move(message)));
}

const ProtectedAppNames& LocalActions::neverQuit() const {
    return with_.services.settings.values().protectedAppNames;
}

Outcome LocalActions::record(Outcome outcome) const {
    return with_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
