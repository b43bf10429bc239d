#include "actions/local_actions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "actions/app_group.h"
#include "actions/cache_purge.h"
#include "actions/command_validators.h"
#include "actions/graceful_quit.h"
#include "actions/local_requests.h"
#include "actions/process_control.h"
#include "actions/review_target.h"
#include "core/activity_log.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

constexpr const char* invalidRequest = "Blocked an invalid process termination request.";

ConfirmationTargets targetsOf(const std::vector<ProcessSample>& rows) {
    ConfirmationTargets targets;
    for (const ProcessSample& row : rows) {
        targets.pids.push_back(row.pid);
        if (std::find(targets.paths.begin(), targets.paths.end(), row.command) ==
            targets.paths.end()) {
            targets.paths.push_back(row.command);
        }
    }
    return targets;
}

}  // namespace

LocalActions::LocalActions(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      jobs_(dependencies_.services.jobs) {
    const auto quit = [this](const ConfirmationRequest& request, void* held) {
        return quitProcess(request, static_cast<HeldProcess*>(held));
    };
    const auto quitGroup = [this](const ConfirmationRequest& request, void*) {
        return request.hostName ? quitAppGroup(*request.hostName) : Outcome::ignored();
    };
    const auto purge = [this](const ConfirmationRequest&, void*) { return runPurge(); };
    ConfirmationDesk& desk = dependencies_.services.confirmations;
    handlers_ = {desk.registerKind(local_requests::quitProcessKind, {quit, {}}),
                 desk.registerKind(local_requests::quitAppKind, {quitGroup, {}}),
                 desk.registerKind(local_requests::purgeKind, {purge, {}})};
}

LocalActions::~LocalActions() = default;

Outcome LocalActions::requestQuitSelectedProcess() {
    const std::optional<std::int64_t> pid = dependencies_.review.selectedPID();
    if (!pid) {
        return record(Outcome::refused("Select a process first."));
    }
    const ProcessSample* row = dependencies_.review.selectedRow();
    if (row != nullptr && dependencies_.review.isProtectedTarget(*row)) {
        return record(Outcome::refused(
            fmt::format("Refused to quit protected process {}.", row->displayName())));
    }
    const std::string name =
        row != nullptr ? std::string(row->displayName()) : fmt::format("process {}", *pid);
    ConfirmationRequest request = local_requests::quitProcess(name, *pid);
    // If the process is no longer in the table, the row that was reviewed.
    const std::optional<ProcessSample>& reviewed = dependencies_.review.reviewedRow();
    const ProcessSample* known = row != nullptr ? row : reviewed ? &*reviewed : nullptr;
    ConfirmationTargets targets;
    if (known != nullptr && !known->command.empty()) {
        targets.paths.push_back(known->command);
    }
    const std::uint64_t startTime = known != nullptr ? known->startTime : 0;
    // The process is no longer in the table and its start time was never known, so its pid may
    // belong to another process by now.
    const bool isUnidentifiable = row == nullptr && known != nullptr && startTime == 0;
    std::shared_ptr<HeldProcess> process;
    if (CommandSafetyPolicy::validatedPID(*pid) && !isUnidentifiable) {
        // With a start time of 0 this holds whichever process has the pid now: the row had no start
        // time, or there never was a row.
        process = dependencies_.ports.processes->hold(*pid, startTime);
    }
    dependencies_.services.confirmations.requestConfirmation(std::move(request), std::move(targets),
                                                             std::move(process));
    dependencies_.review.setOptimizeStep(local_requests::quitProcessStep(name));
    return Outcome::asked();
}

Outcome LocalActions::quitProcess(const ConfirmationRequest& request, HeldProcess* process) {
    if (!request.pid) {
        return Outcome::ignored();
    }
    const std::int64_t pid = *request.pid;
    // Null for an invalid pid, and for a process that is gone and whose start time was never known.
    if (process == nullptr) {
        return record(Outcome::refused(invalidRequest));
    }
    const TerminationResult result = process->terminate();
    switch (result.kind) {
        case TerminationResult::Kind::blocked:
            return record(Outcome::refused(invalidRequest));
        case TerminationResult::Kind::failed:
            return record(
                Outcome::failed(fmt::format("Could not quit process {}: {}", pid, result.error)));
        case TerminationResult::Kind::asked:
        case TerminationResult::Kind::refused:
            break;
    }
    Outcome outcome = record(
        result.kind == TerminationResult::Kind::asked
            ? Outcome::done(fmt::format("Asked process {} to quit.", pid))
            : Outcome::failed(fmt::format("Could not quit process {}. It may be protected.", pid)));
    dependencies_.refresh();
    return outcome;
}

Outcome LocalActions::requestQuitSelectedApp() {
    std::optional<std::string> group = dependencies_.review.selectedAppImpactName();
    const auto& snapshot = dependencies_.sample.snapshot();
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
    const std::vector<ProcessSample> members = visibleMembers(
        dependencies_.sample.latestProcesses(), *group, neverQuit(), dependencies_.protection);
    if (members.empty()) {
        return record(Outcome::refused(fmt::format("No visible processes found for {}.", *group)));
    }
    dependencies_.services.confirmations.requestConfirmation(local_requests::quitApp(*group),
                                                             targetsOf(members));
    dependencies_.review.setOptimizeStep(local_requests::quitAppStep(*group));
    return Outcome::asked();
}

Outcome LocalActions::quitAppGroup(const std::string& group) {
    const auto [entry, isNew] = membersOfAskedGroups_.try_emplace(group);
    if (!isNew) {
        // Asked a second time, the application may have closed its windows already, and would get
        // TERM while it is still saving.
        return record(Outcome::refused(fmt::format("{} is still being asked to quit.", group)));
    }
    entry->second = membersForTerm(group);
    if (dependencies_.ports.gracefulQuit == nullptr) {
        return finishAppGroup(group, false);
    }
    // A group that was put on the Never Quit list meanwhile is still asked, because the owner
    // confirmed it by its name, but its processes get no TERM.
    std::vector<ProcessSample> members =
        visibleMembers(dependencies_.sample.latestProcesses(), group, {}, dependencies_.protection);
    // In the background, because an application may take long to answer.
    jobs_.run(
        Lane::actions,
        [quit = dependencies_.ports.gracefulQuit, group, members = std::move(members)](
            const Stop&) { return quit->gracefulAppQuit(group, members); },
        [this, group](bool wasAsked) { finishAppGroup(group, wasAsked); });
    return Outcome::asked();
}

std::vector<LocalActions::GroupMember> LocalActions::membersForTerm(const std::string& group) {
    std::vector<GroupMember> result;
    // From the current rows, because those shown with the request may have ended.
    for (ProcessSample& row : visibleMembers(dependencies_.sample.latestProcesses(), group,
                                             neverQuit(), dependencies_.protection)) {
        if (CommandSafetyPolicy::validatedPID(row.pid)) {
            // A pid may be reused while the application is asked. Only processes without a start
            // time, which nothing else identifies, are held: a group may have hundreds of members,
            // and each hold may take a descriptor.
            auto process =
                row.startTime == 0 ? dependencies_.ports.processes->hold(row.pid, 0) : nullptr;
            result.push_back({std::move(row), std::move(process)});
        }
    }
    return result;
}

Outcome LocalActions::finishAppGroup(const std::string& group, bool wasAskedGracefully) {
    std::vector<GroupMember> members = std::move(membersOfAskedGroups_[group]);
    membersOfAskedGroups_.erase(group);
    if (!wasAskedGracefully) {
        for (GroupMember& member : members) {
            // The Never Quit list may have changed while the application was asked.
            if (!isSafeTarget(member.row, neverQuit(), dependencies_.protection)) {
                continue;
            }
            const auto process =
                member.process != nullptr
                    ? std::move(member.process)
                    : dependencies_.ports.processes->hold(member.row.pid, member.row.startTime);
            // The result is ignored: a process that was not signalled stays in the next sample.
            process->terminate();
        }
    }
    Outcome outcome = record(Outcome::done(
        wasAskedGracefully ? fmt::format("Asked {} to quit gracefully.", group)
                           : fmt::format("Asked {}'s visible processes to quit.", group)));
    dependencies_.refresh();
    return outcome;
}

Outcome LocalActions::requestPurge() {
    dependencies_.services.confirmations.requestConfirmation(local_requests::purge());
    dependencies_.review.setOptimizeStep(local_requests::purgeStep());
    return Outcome::asked();
}

Outcome LocalActions::runPurge() {
    if (std::exchange(isPurging_, true)) {
        return record(Outcome::refused("File caches are being purged already."));
    }
    observable_->changed();
    jobs_.run(
        Lane::actions,
        [purge = dependencies_.ports.cachePurge](const Stop&) { return purge->purge(); },
        [this](const PurgeResult& result) { finishPurge(result); });
    return Outcome::asked();
}

void LocalActions::finishPurge(const PurgeResult& result) {
    isPurging_ = false;
    observable_->changed();
    switch (result.kind) {
        case PurgeResult::Kind::blocked:
            record(Outcome::refused("Blocked an executable outside the command allowlist."));
            return;
        case PurgeResult::Kind::failed:
            record(Outcome::failed(fmt::format("Could not run purge: {}", result.error)));
            return;
        case PurgeResult::Kind::purged:
            record(
                Outcome::done("Purged reclaimable file caches. macOS may refill them as needed."));
            break;
        case PurgeResult::Kind::refused:
            record(Outcome::failed("Purge was blocked by macOS."));
            break;
    }
    dependencies_.refresh();
}

Outcome LocalActions::optimizeSafely() {
    const auto& snapshot = dependencies_.sample.snapshot();
    if (!snapshot) {
        return record(Outcome::refused("No sample is available yet."));
    }
    const AppImpact* target =
        firstSafeGroup(snapshot->appImpacts, dependencies_.sample.latestProcesses(), neverQuit(),
                       dependencies_.protection);
    if (target != nullptr) {
        dependencies_.review.setTarget(*target->topPID, target->name);
    }
    const bool purges =
        dependencies_.services.settings.values().warningThreshold <= snapshot->memory.pressure;
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
        return Outcome::ignored();
    }
    return setNeverQuit(std::move(names), fmt::format("{} removed from Never Quit.", group));
}

Outcome LocalActions::setNeverQuit(ProtectedAppNames names, std::string message) {
    dependencies_.services.settings.set(&Settings::protectedAppNames, std::move(names));
    dependencies_.sample.regroup(neverQuit(), dependencies_.protection);
    return record(Outcome::done(std::move(message)));
}

const ProtectedAppNames& LocalActions::neverQuit() const {
    return dependencies_.services.settings.values().protectedAppNames;
}

Outcome LocalActions::record(Outcome outcome) const {
    return dependencies_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
