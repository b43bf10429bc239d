#include "actions/local_actions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "actions/app_group.h"
#include "actions/command_validators.h"
#include "actions/local_requests.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "sampling/app_impact.h"

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
      observable_(with_.services.jobs.mainQueue()),
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
    // Those of the row that was reviewed, where the process has left the table since.
    const std::string& path = row != nullptr ? row->command : with_.review.selectedCommand();
    const std::uint64_t startTime =
        row != nullptr ? row->startTime : with_.review.selectedStartTime();
    // Of a process that is gone and never had a start time nobody can tell whether it still is the
    // one that bears the number.
    const bool isUntold = row == nullptr && startTime == 0 && !path.empty();
    reviewed_ = {request.id, nullptr};
    if (CommandSafetyPolicy::validatedPID(*pid) && !isUntold) {
        // A row without a start time stands for the process that bears its number at this moment,
        // and so does a number that no row ever told of.
        reviewed_.process = with_.ports.processes->hold(*pid, startTime);
    }
    with_.confirmations.requestConfirmation(
        std::move(request), path.empty() ? std::vector<std::string>() : std::vector{path});
    with_.review.setOptimizeStep(local_requests::quitProcessStep(name));
    return Outcome::asked();
}

Outcome LocalActions::quitProcess(const ConfirmationRequest& request) {
    if (!request.pid) {
        return Outcome::refused({});
    }
    const std::int64_t pid = *request.pid;
    Reviewed reviewed = std::exchange(reviewed_, {});
    if (reviewed.request != request.id || reviewed.process == nullptr) {
        return record(Outcome::refused(invalidRequest));
    }
    const TerminationResult result = reviewed.process->terminate();
    switch (result.outcome) {
        case TerminationResult::Outcome::blocked:
            return record(Outcome::refused(invalidRequest));
        case TerminationResult::Outcome::failed:
            return record(
                Outcome::failed(fmt::format("Could not quit process {}: {}", pid, result.error)));
        case TerminationResult::Outcome::asked:
        case TerminationResult::Outcome::refused:
            break;
    }
    Outcome outcome =
        result.outcome == TerminationResult::Outcome::asked
            ? Outcome::done(fmt::format("Asked process {} to quit.", pid))
            : Outcome::failed(fmt::format("Could not quit process {}. It may be protected.", pid));
    outcome = record(std::move(outcome));
    with_.refresh();
    return outcome;
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

Outcome LocalActions::quitAppGroup(const std::string& group) {
    const auto [asking, isNew] = membersOfAskedGroups_.try_emplace(group);
    if (!isNew) {
        // A second asking beside the first would find windows closed already, and end what saves.
        return record(Outcome::refused(fmt::format("{} is still being asked to quit.", group)));
    }
    asking->second = membersForTerm(group);
    if (with_.ports.gracefulQuit == nullptr) {
        finishAppGroup(group, false);
        return Outcome::done();
    }
    // A group that was put on the Never Quit list meanwhile is still asked, for it was confirmed by
    // its name; it just is not made to quit.
    std::vector<ProcessSample> members =
        visibleMembers(with_.sample.latestProcesses(), group, {}, with_.protection);
    // An application may take its time to answer, and the window must not wait with it.
    jobs_.run(
        Lane::actions,
        [quit = with_.ports.gracefulQuit, group, members = std::move(members)](const Stop&) {
            return quit->gracefulAppQuit(group, members);
        },
        [this, group](bool wasAsked) { finishAppGroup(group, wasAsked); });
    return Outcome::asked();
}

std::vector<LocalActions::GroupMember> LocalActions::membersForTerm(const std::string& group) {
    std::vector<GroupMember> result;
    // From the rows of this moment: what was shown when the request was built may have gone.
    for (ProcessSample& row :
         visibleMembers(with_.sample.latestProcesses(), group, neverQuit(), with_.protection)) {
        if (CommandSafetyPolicy::validatedPID(row.pid)) {
            // While the application is asked a number may change hands. Only those are held that
            // nothing else would tell apart then: a group may have hundreds of members, and each
            // hold may take a descriptor.
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
            // The list of what may not be quit can have grown while the application was asked.
            if (!isSafeTarget(member.row, neverQuit(), with_.protection)) {
                continue;
            }
            const auto process =
                member.process != nullptr
                    ? std::move(member.process)
                    : with_.ports.processes->hold(member.row.pid, member.row.startTime);
            // A process that would not be asked stays in the next sample's list, which is all that
            // a person needs to see.
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

Outcome LocalActions::runPurge() {
    if (std::exchange(isPurging_, true)) {
        return record(Outcome::refused("File caches are being purged already."));
    }
    observable_.changed();
    jobs_.run(
        Lane::actions, [purge = with_.ports.cachePurge](const Stop&) { return purge->purge(); },
        [this](const PurgeResult& result) { finishPurge(result); });
    return Outcome::asked();
}

void LocalActions::finishPurge(const PurgeResult& result) {
    isPurging_ = false;
    observable_.changed();
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
    TextSet names = neverQuit();
    const bool wasThere = names.erase(group) > 0;
    if (!wasThere) {
        names.insert(group);
    }
    with_.services.settings.set(&Settings::protectedAppNames, std::move(names));
    with_.sample.regroup(neverQuit(), with_.protection);
    return record(Outcome::done(
        fmt::format("{} {} Never Quit.", group, wasThere ? "removed from" : "added to")));
}

const TextSet& LocalActions::neverQuit() const {
    return with_.services.settings.values().protectedAppNames;
}

Outcome LocalActions::record(Outcome outcome) const {
    return with_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
