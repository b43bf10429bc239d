#include "actions/local_actions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "actions/app_group.h"
#include "actions/command_validators.h"
#include "actions/local_requests.h"
#include "core/settings_keys.h"
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

LocalActions::LocalActions(Surroundings surroundings, LocalActionPorts ports)
    : with_(std::move(surroundings)),
      ports_(std::move(ports)),
      self_(std::make_shared<LocalActions*>(this)) {
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

void LocalActions::requestQuitSelectedProcess() {
    const std::optional<std::int64_t> pid = with_.review.selectedPID();
    if (!pid) {
        with_.log.recordMessage("Select a process first.");
        return;
    }
    const ProcessSample* row = with_.review.selectedRow();
    if (row != nullptr && with_.review.isProtectedTarget(*row)) {
        with_.log.recordMessage(
            fmt::format("Refused to quit protected process {}.", row->displayName()));
        return;
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
        reviewed_.process = ports_.processes->hold(*pid, startTime);
    }
    with_.confirmations.requestConfirmation(
        std::move(request), path.empty() ? std::vector<std::string>() : std::vector{path});
    with_.review.setOptimizeStep(local_requests::quitProcessStep(name));
}

void LocalActions::quitProcess(const ConfirmationRequest& request) {
    if (!request.pid) {
        return;
    }
    const std::int64_t pid = *request.pid;
    Reviewed reviewed = std::exchange(reviewed_, {});
    if (reviewed.request != request.id || reviewed.process == nullptr) {
        with_.log.recordMessage(invalidRequest);
        return;
    }
    const TerminationResult result = reviewed.process->terminate();
    switch (result.outcome) {
        case TerminationResult::Outcome::blocked:
            with_.log.recordMessage(invalidRequest);
            return;
        case TerminationResult::Outcome::failed:
            with_.log.recordMessage(
                fmt::format("Could not quit process {}: {}", pid, result.error));
            return;
        case TerminationResult::Outcome::asked:
            with_.log.recordMessage(fmt::format("Asked process {} to quit.", pid));
            break;
        case TerminationResult::Outcome::refused:
            with_.log.recordMessage(
                fmt::format("Could not quit process {}. It may be protected.", pid));
            break;
    }
    with_.refresh();
}

void LocalActions::requestQuitSelectedApp() {
    std::optional<std::string> group = with_.review.selectedAppImpactName();
    const auto& snapshot = with_.sample.snapshot();
    if (!group && snapshot && !snapshot->appImpacts.empty()) {
        group = snapshot->appImpacts.front().name;
    }
    if (!group) {
        with_.log.recordMessage("Select an app group first.");
        return;
    }
    const ProtectedAppNames& neverQuit = with_.settings.protectedAppNames;
    if (neverQuit.contains(*group)) {
        with_.log.recordMessage(fmt::format("Refused to quit protected app group {}.", *group));
        return;
    }
    const std::vector<ProcessSample> members =
        visibleMembers(with_.sample.latestProcesses(), *group, neverQuit, with_.protection);
    if (members.empty()) {
        with_.log.recordMessage(fmt::format("No visible processes found for {}.", *group));
        return;
    }
    with_.confirmations.requestConfirmation(local_requests::quitApp(*group),
                                            distinctPaths(members));
    with_.review.setOptimizeStep(local_requests::quitAppStep(*group));
}

void LocalActions::quitAppGroup(const std::string& group) {
    const auto [asking, isNew] = membersOfAskedGroups_.try_emplace(group);
    if (!isNew) {
        // A second asking beside the first would find windows closed already, and end what saves.
        with_.log.recordMessage(fmt::format("{} is still being asked to quit.", group));
        return;
    }
    asking->second = membersForTerm(group);
    if (ports_.gracefulQuit == nullptr) {
        finishAppGroup(group, false);
        return;
    }
    // A group that was put on the Never Quit list meanwhile is still asked, for it was confirmed by
    // its name; it just is not made to quit.
    std::vector<ProcessSample> members =
        visibleMembers(with_.sample.latestProcesses(), group, {}, with_.protection);
    // An application may take its time to answer, and the window must not wait with it.
    with_.workQueue.post([&mainQueue = with_.mainQueue, quit = ports_.gracefulQuit,
                          self = std::weak_ptr(self_), group, members = std::move(members)] {
        const bool wasAsked = quit->gracefulAppQuit(group, members);
        mainQueue.post([self, group, wasAsked] {
            if (const auto actions = self.lock()) {
                (*actions)->finishAppGroup(group, wasAsked);
            }
        });
    });
}

std::vector<LocalActions::GroupMember> LocalActions::membersForTerm(const std::string& group) {
    std::vector<GroupMember> result;
    // From the rows of this moment: what was shown when the request was built may have gone.
    for (ProcessSample& row : visibleMembers(with_.sample.latestProcesses(), group,
                                             with_.settings.protectedAppNames, with_.protection)) {
        if (CommandSafetyPolicy::validatedPID(row.pid)) {
            // While the application is asked a number may change hands. Only those are held that
            // nothing else would tell apart then: a group may have hundreds of members, and each
            // hold may take a descriptor.
            auto process = row.startTime == 0 ? ports_.processes->hold(row.pid, 0) : nullptr;
            result.push_back({std::move(row), std::move(process)});
        }
    }
    return result;
}

void LocalActions::finishAppGroup(const std::string& group, bool wasAskedGracefully) {
    std::vector<GroupMember> members = std::move(membersOfAskedGroups_[group]);
    membersOfAskedGroups_.erase(group);
    if (wasAskedGracefully) {
        with_.log.recordMessage(fmt::format("Asked {} to quit gracefully.", group));
    } else {
        for (GroupMember& member : members) {
            // The list of what may not be quit can have grown while the application was asked.
            if (!isSafeTarget(member.row, with_.settings.protectedAppNames, with_.protection)) {
                continue;
            }
            const auto process = member.process != nullptr
                                     ? std::move(member.process)
                                     : ports_.processes->hold(member.row.pid, member.row.startTime);
            // A process that would not be asked stays in the next sample's list, which is all that
            // a person needs to see.
            process->terminate();
        }
        with_.log.recordMessage(fmt::format("Asked {}'s visible processes to quit.", group));
    }
    with_.refresh();
}

void LocalActions::requestPurge() {
    with_.confirmations.requestConfirmation(local_requests::purge());
    with_.review.setOptimizeStep(local_requests::purgeStep());
}

void LocalActions::runPurge() {
    if (std::exchange(isPurging_, true)) {
        with_.log.recordMessage("File caches are being purged already.");
        return;
    }
    with_.observable.changed();
    with_.workQueue.post(
        [&mainQueue = with_.mainQueue, purge = ports_.cachePurge, self = std::weak_ptr(self_)] {
            const PurgeResult result = purge->purge();
            mainQueue.post([self, result] {
                if (const auto actions = self.lock()) {
                    (*actions)->finishPurge(result);
                }
            });
        });
}

void LocalActions::finishPurge(const PurgeResult& result) {
    isPurging_ = false;
    switch (result.outcome) {
        case PurgeResult::Outcome::blocked:
            with_.log.recordMessage("Blocked an executable outside the command allowlist.");
            return;
        case PurgeResult::Outcome::failed:
            with_.log.recordMessage(fmt::format("Could not run purge: {}", result.error));
            return;
        case PurgeResult::Outcome::purged:
            with_.log.recordMessage(
                "Purged reclaimable file caches. macOS may refill them as needed.");
            break;
        case PurgeResult::Outcome::refused:
            with_.log.recordMessage("Purge was blocked by macOS.");
            break;
    }
    with_.refresh();
}

void LocalActions::optimizeSafely() {
    const auto& snapshot = with_.sample.snapshot();
    if (!snapshot) {
        with_.log.recordMessage("No sample is available yet.");
        return;
    }
    const AppImpact* target = firstSafeGroup(snapshot->appImpacts, with_.sample.latestProcesses(),
                                             with_.settings.protectedAppNames, with_.protection);
    if (target != nullptr) {
        with_.review.setTarget(*target->topPID, target->name);
    }
    const bool purges = with_.settings.warningThreshold <= snapshot->memory.pressure;
    if (purges) {
        requestPurge();
    }
    if (purges && target != nullptr) {
        with_.log.recordMessage(fmt::format(
            "Optimized safely: purged caches and selected {} for review.", target->name));
    } else if (purges) {
        with_.log.recordMessage("Optimized safely: purged caches. No safe app target was found.");
    } else if (target != nullptr) {
        with_.log.recordMessage(fmt::format(
            "Optimize Safely selected {}. Review it before quitting anything.", target->name));
    } else {
        with_.log.recordMessage("Optimize Safely found no safe action needed right now.");
    }
}

void LocalActions::toggleNeverQuit(const std::string& group) {
    ProtectedAppNames& names = with_.settings.protectedAppNames;
    if (names.erase(group) > 0) {
        with_.log.recordMessage(fmt::format("{} removed from Never Quit.", group));
    } else {
        names.insert(group);
        with_.log.recordMessage(fmt::format("{} added to Never Quit.", group));
    }
    // The set is sorted, and so is what is stored of it.
    with_.store.write(settings_keys::protectedAppsKey,
                      SettingsTextList(names.begin(), names.end()));
    with_.regroup();
    with_.observable.changed();
}

}  // namespace tallowcrest
