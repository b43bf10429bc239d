#include "remote/remote_actions.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "actions/command_validators.h"
#include "actions/desktop_actions.h"
#include "actions/tool_runner.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "remote/remote_commands.h"
#include "remote/remote_process.h"
#include "remote/remote_profiles.h"
#include "remote/remote_report_text.h"
#include "remote/remote_requests.h"
#include "remote/remote_scan.h"
#include "remote/remote_setup_script.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using CommandSafetyPolicy::validatedSSHHost;

Outcome notReachable(const RemoteHealth& machine) {
    return Outcome::refused(fmt::format("{} is not reachable by SSH yet.", machine.hostName));
}

Outcome invalidTarget() {
    return Outcome::refused("Blocked an invalid SSH target.");
}

Outcome invalidAddress() {
    return Outcome::refused("Blocked an invalid remote address.");
}

std::string_view kindOf(const RemoteHealth& machine) {
    return machine.isLinux ? "machine" : "Mac";
}

}  // namespace

RemoteActions::RemoteActions(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      jobs_(dependencies_.services.jobs) {
    const auto purge = [this](const ConfirmationRequest& request, void* held) {
        const Reviewed& reviewed = *static_cast<const Reviewed*>(held);
        const RemoteHealth* machine = latest(request, reviewed);
        return machine != nullptr ? performRemotePurge(*machine, reviewed) : Outcome::ignored();
    };
    const auto quit = [this](const ConfirmationRequest& request, void* held) {
        const Reviewed& reviewed = *static_cast<const Reviewed*>(held);
        const RemoteHealth* machine = latest(request, reviewed);
        if (machine == nullptr) {
            return Outcome::ignored();
        }
        const auto process =
            std::ranges::find(machine->topProcesses, request.pid, &RemoteProcess::pid);
        return process != machine->topProcesses.end()
                   ? performRemoteQuit(*machine, *process, reviewed)
                   : Outcome::ignored();
    };
    ConfirmationDesk& desk = dependencies_.services.confirmations;
    handlers_ = {desk.registerKind(remote_requests::purgeKind, {purge, {}}),
                 desk.registerKind(remote_requests::quitProcessKind, {quit, {}})};
}

RemoteActions::~RemoteActions() = default;

Outcome RemoteActions::requestRemotePurge(const RemoteHealth& machine) {
    if (!isReachable(machine)) {
        return recordResult(machine.id, notReachable(machine));
    }
    const RemoteProfile profile = dependencies_.profiles.remoteProfile(machine.hostName);
    if (!profile.allowRemotePurge) {
        return recordResult(
            machine.id,
            Outcome::refused(fmt::format(
                "Remote purge is disabled for {}. Enable it in that {}'s profile first.",
                machine.hostName, kindOf(machine))));
    }
    dependencies_.services.confirmations.requestConfirmation(
        remote_requests::purge(machine.hostName, profile.nickname, machine.isLinux), {},
        std::make_shared<Reviewed>(Reviewed{machine.id}));
    return Outcome::asked();
}

Outcome RemoteActions::performRemotePurge(const RemoteHealth& machine, const Reviewed& reviewed) {
    const auto target = targetOf(machine);
    if (!isReachable(machine) || machine.id != reviewed.id ||
        !dependencies_.profiles.remoteProfile(machine.hostName).allowRemotePurge || !target) {
        return recordResult(
            reviewed.id, Outcome::refused("Remote purge was blocked because reachability, profile "
                                          "permission, or host validation changed."));
    }
    return run({.machine = machine.id,
                .target = *target,
                .text = remote_commands::purge(machine.isLinux),
                .timeout = 15s,
                .successMark = "purge_ok",
                .runningMessage = fmt::format("Purging file caches on {}...", machine.hostName),
                .doneMessage = fmt::format("Purged remote file caches on {}.", machine.hostName),
                .failedMessage = fmt::format("Remote purge failed on {}. It may require "
                                             "permissions or be unavailable.",
                                             machine.hostName)});
}

Outcome RemoteActions::requestRemoteQuit(const RemoteHealth& machine,
                                         const RemoteProcess& process) {
    if (!isReachable(machine)) {
        return recordResult(machine.id, notReachable(machine));
    }
    if (isProtected(machine, process)) {
        return recordResult(
            machine.id, Outcome::refused(fmt::format("Refused to quit protected remote process {}.",
                                                     process.displayName())));
    }
    if (!validatedSSHHost(machine.address) || !remote_commands::quit(process, machine.isLinux)) {
        return recordResult(machine.id, Outcome::refused("Blocked invalid remote command inputs."));
    }
    dependencies_.services.confirmations.requestConfirmation(
        remote_requests::quitProcess(machine.hostName, process), {.paths = {process.command}},
        std::make_shared<Reviewed>(Reviewed{machine.id, process.command}));
    return Outcome::asked();
}

Outcome RemoteActions::performRemoteQuit(const RemoteHealth& machine, const RemoteProcess& process,
                                         const Reviewed& reviewed) {
    const auto target = targetOf(machine);
    const auto command = remote_commands::quit(process, machine.isLinux);
    if (!isReachable(machine) || machine.id != reviewed.id || process.command != reviewed.command ||
        isProtected(machine, process) || !target || !command) {
        return recordResult(reviewed.id,
                            Outcome::refused("Remote process termination was blocked because its "
                                             "reviewed safety state changed."));
    }
    return run({.machine = machine.id,
                .target = *target,
                .text = *command,
                .timeout = 8s,
                .successMark = "quit_ok",
                .runningMessage = fmt::format("Asking {} to quit on {}...", process.displayName(),
                                              machine.hostName),
                .doneMessage =
                    fmt::format("Asked {} to quit on {}.", process.displayName(), machine.hostName),
                .failedMessage = fmt::format("Could not quit {} on {}.", process.displayName(),
                                             machine.hostName)});
}

Outcome RemoteActions::run(const Command& command) {
    keepResult(command.machine, Outcome::asked(command.runningMessage));
    jobs_.run(
        Lane::remoteActions,
        [&tools = dependencies_.tools,
         arguments = remote_commands::sshArguments(command.target, command.text),
         timeout = command.timeout](const Stop&) { return tools.runSSH(arguments, timeout); },
        [this, command](const std::string& output) {
            if (output.find(command.successMark) == std::string::npos) {
                recordResult(command.machine, Outcome::failed(command.failedMessage));
                return;
            }
            recordResult(command.machine, Outcome::done(command.doneMessage));
            dependencies_.scan.scanRemoteMacs();
        });
    return Outcome::asked();
}

Outcome RemoteActions::remoteOptimizeSafely(const RemoteHealth& machine) {
    if (!isReachable(machine)) {
        return recordResult(machine.id, notReachable(machine));
    }
    const RemoteProfile profile = dependencies_.profiles.remoteProfile(machine.hostName);
    if (profile.warningThreshold <= machine.memoryPercent.value_or(0.0)) {
        return profile.allowRemotePurge
                   ? requestRemotePurge(machine)
                   : recordResult(machine.id, Outcome::refused(fmt::format(
                                                  "{} is above its threshold, but remote purge "
                                                  "is disabled for this {}.",
                                                  machine.hostName, kindOf(machine))));
    }
    const TextSet& neverQuit = dependencies_.services.settings.values().protectedAppNames;
    const auto app =
        std::ranges::find_if(machine.appImpacts, [&neverQuit](const RemoteAppImpact& each) {
            return each.topPID && !neverQuit.contains(each.name);
        });
    if (app == machine.appImpacts.end()) {
        return recordResult(machine.id,
                            Outcome::done(fmt::format("{} looks healthy. No remote safe action "
                                                      "needed.",
                                                      machine.hostName)));
    }
    Outcome copied = copyRemoteAppReport(machine, *app);
    if (!copied.isAccepted()) {
        keepResult(machine.id, copied);
        return copied;
    }
    return recordResult(machine.id, Outcome::done(fmt::format("Remote Optimize Safely selected {} "
                                                              "on {} and copied a report.",
                                                              app->name, machine.hostName)));
}

Outcome RemoteActions::copyRemoteReport(const RemoteHealth& machine) {
    return dependencies_.pasteboard.copyToPasteboard(
        remoteReportText(machine, dependencies_.services.locale),
        fmt::format("Copied remote report for {}.", machine.hostName));
}

Outcome RemoteActions::copyRemoteProcessReport(const RemoteHealth& machine,
                                               const RemoteProcess& process) {
    return dependencies_.pasteboard.copyToPasteboard(
        remoteProcessReportText(machine, process),
        fmt::format("Copied remote process report for {}.", process.displayName()));
}

Outcome RemoteActions::copyRemoteAppReport(const RemoteHealth& machine,
                                           const RemoteAppImpact& app) {
    return dependencies_.pasteboard.copyToPasteboard(
        remoteAppReportText(machine, app),
        fmt::format("Copied remote app report for {}.", app.name));
}

Outcome RemoteActions::copySSHDiagnosticCommand(const RemoteHealth& machine) {
    const auto target = targetOf(machine);
    return target ? dependencies_.pasteboard.copyToPasteboard(
                        remote_commands::sshDiagnostic(*target, machine.isLinux),
                        fmt::format("Copied SSH diagnostic command for {}.", machine.hostName))
                  : record(invalidTarget());
}

Outcome RemoteActions::copyTailscalePingCommand(const RemoteHealth& machine) {
    const auto host = validatedSSHHost(machine.address);
    return host ? dependencies_.pasteboard.copyToPasteboard(
                      remote_commands::tailscalePing(*host),
                      fmt::format("Copied Tailscale ping command for {}.", machine.hostName))
                : record(invalidAddress());
}

Outcome RemoteActions::copyPortTestCommand(const RemoteHealth& machine) {
    const auto host = validatedSSHHost(machine.address);
    return host ? dependencies_.pasteboard.copyToPasteboard(
                      remote_commands::portTest(dependencies_.ports.portTest, *host),
                      fmt::format("Copied port 22 test command for {}.", machine.hostName))
                : record(invalidAddress());
}

Outcome RemoteActions::copyHostKeyRepairCommand(const RemoteHealth& machine) {
    const auto host = validatedSSHHost(machine.address);
    const auto target = targetOf(machine);
    return host && target
               ? dependencies_.pasteboard.copyToPasteboard(
                     remote_commands::hostKeyRepair(*host, *target),
                     fmt::format("Copied host key repair command for {}.", machine.hostName))
               : record(invalidTarget());
}

Outcome RemoteActions::copySSHKeyInstallCommand(const RemoteHealth& machine) {
    const auto key = dependencies_.ports.localPublicKey();
    if (!key) {
        return copyKeyGeneration();
    }
    const auto target = targetOf(machine);
    return target ? dependencies_.pasteboard.copyToPasteboard(
                        remote_commands::keyInstall(*target, *key),
                        fmt::format("Copied SSH key install command for {}.", machine.hostName))
                  : record(invalidTarget());
}

Outcome RemoteActions::copyLocalPublicKey() {
    const auto key = dependencies_.ports.localPublicKey();
    return key ? dependencies_.pasteboard.copyToPasteboard(*key,
                                                           "Copied this Mac's SSH public key.")
               : copyKeyGeneration();
}

Outcome RemoteActions::copyKeyGeneration() {
    return dependencies_.pasteboard.copyToPasteboard(std::string(remote_commands::keyGeneration),
                                                     "Copied SSH key generation command.");
}

Outcome RemoteActions::exportRemoteSetupScript(std::function<void(const Outcome&)> finished) {
    const std::filesystem::path file =
        dependencies_.ports.folder->place().parent_path() / remoteSetupScriptName;
    jobs_.run(
        Lane::reports,
        [folder = dependencies_.ports.folder, file](const Stop& stop) {
            const auto change = stop.beginChange();
            return change ? folder->writeScript(file, std::string(remoteSetupScript))
                          : Outcome::failed("canceled");
        },
        [this, file, finished = std::move(finished)](const Outcome& written) {
            const Outcome outcome = finishExport(file, written);
            if (finished) {
                finished(outcome);
            }
        });
    return Outcome::asked();
}

Outcome RemoteActions::finishExport(const std::filesystem::path& file, const Outcome& written) {
    if (!written.isAccepted()) {
        return record(Outcome::failed("Could not export remote setup script: " + written.message));
    }
    dependencies_.ports.folder->reveal(file);
    return record(Outcome::done("Exported remote SSH setup script."));
}

const RemoteHealth* RemoteActions::latest(const ConfirmationRequest& request,
                                          const Reviewed& reviewed) const {
    const RemoteHealth* found = nullptr;
    for (const RemoteHealth& machine : dependencies_.scan.state().remoteHealth) {
        if (machine.hostName == request.hostName &&
            (found == nullptr || machine.id == reviewed.id)) {
            found = &machine;
        }
    }
    return found;
}

bool RemoteActions::isProtected(const RemoteHealth& machine, const RemoteProcess& process) const {
    return isProtectedRemoteProcess(
        process, dependencies_.services.settings.values().protectedAppNames, machine.isLinux);
}

std::optional<std::string> RemoteActions::targetOf(const RemoteHealth& machine) const {
    return CommandSafetyPolicy::sshTarget(dependencies_.services.settings.values().sshUsername,
                                          machine.address);
}

void RemoteActions::keepResult(const std::string& machine, const Outcome& outcome) {
    results_.insert_or_assign(machine,
                              RemoteActionResult{outcome, dependencies_.services.clock.now()});
    observable_->changed();
}

Outcome RemoteActions::recordResult(const std::string& machine, Outcome outcome) {
    keepResult(machine, outcome);
    return record(std::move(outcome));
}

Outcome RemoteActions::record(Outcome outcome) const {
    return dependencies_.services.log.record(std::move(outcome));
}

}  // namespace tallowcrest
