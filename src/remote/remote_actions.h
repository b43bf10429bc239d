#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/confirmation_desk.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/local_records.h"
#include "core/outcome.h"
#include "core/remote_records.h"
#include "core/services.h"
#include "remote/remote_ports.h"

namespace tallowcrest {

class Observable;
class Pasteboard;
class RemoteProfiles;
class RemoteScan;
class ToolRunner;

/// How a request for a machine, or what was confirmed of it, ended. The message is the recorded
/// one; while it runs, it says what is being done and is not recorded.
struct RemoteActionResult {
    Outcome outcome;
    Date at;

    bool operator==(const RemoteActionResult&) const = default;
};

/// What the owner can do for another machine. Two operations change it: a purge of its file caches
/// and TERM for one process. Each has two halves: a request half that checks and asks for a
/// confirmation, and an execution half that the confirmation runs, which checks again with the
/// results of the latest scan. All others put a text on the clipboard or write a file here. Main
/// thread.
class RemoteActions {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        RemoteScan& scan;
        const RemoteProfiles& profiles;
        ToolRunner& tools;
        Pasteboard& pasteboard;
        RemoteActionPorts ports;
    };

    /// Registers the kinds of confirmation that it owns.
    explicit RemoteActions(Dependencies dependencies);
    ~RemoteActions();
    RemoteActions(const RemoteActions&) = delete;
    RemoteActions& operator=(const RemoteActions&) = delete;

    /// How the last purge, quit or safest step of each machine of this run ended or was refused, by
    /// the identifier of its record; asked while a confirmed one runs. A success begins a scan,
    /// whose messages replace the last action at once.
    const std::map<std::string, RemoteActionResult>& results() const { return results_; }

    /// Requests confirmation to purge the machine's file caches. Refused while it is not reachable
    /// and while its profile does not allow it.
    ///
    /// When it is confirmed, the machine is looked up by its host name in the latest scan: ignored
    /// when no such machine is listed any more, refused when it can no longer be purged, or when
    /// the name belongs to another machine now. A success begins a new scan.
    Outcome requestRemotePurge(const RemoteHealth& machine);

    /// The same for asking a process to quit. Refused while the machine is not reachable, for a
    /// protected process and for an address or a pid that no command may contain.
    ///
    /// When it is confirmed, the process is looked up by its pid, too: ignored when that is no
    /// longer listed, refused when it belongs to another program now.
    Outcome requestRemoteQuit(const RemoteHealth& machine, const RemoteProcess& process);

    /// The safest step for the machine: requests a purge when its memory is at or above the
    /// threshold of its profile, or else copies a report on its first group that is not on the
    /// Never Quit list. Changes nothing on it. Refused while it is not reachable, and at the
    /// threshold when its profile does not allow a purge.
    Outcome remoteOptimizeSafely(const RemoteHealth& machine);

    Outcome copyRemoteReport(const RemoteHealth& machine);
    Outcome copyRemoteProcessReport(const RemoteHealth& machine, const RemoteProcess& process);
    Outcome copyRemoteAppReport(const RemoteHealth& machine, const RemoteAppImpact& app);

    // Command lines for the owner's own terminal. Refused for a machine with an invalid address,
    // and, where they name the user, with an invalid user name.

    Outcome copySSHDiagnosticCommand(const RemoteHealth& machine);
    Outcome copyTailscalePingCommand(const RemoteHealth& machine);
    Outcome copyPortTestCommand(const RemoteHealth& machine);
    Outcome copyHostKeyRepairCommand(const RemoteHealth& machine);
    /// Without a public key, the command that makes one.
    Outcome copySSHKeyInstallCommand(const RemoteHealth& machine);
    /// Without a public key, the command that makes one.
    Outcome copyLocalPublicKey();

    /// Writes the set-up script into the folder that has that of the reports, in place of an older
    /// one, in the background; then shows the file and records the result. `finished`, if given,
    /// gets the recorded result on a later turn.
    Outcome exportRemoteSetupScript(std::function<void(const Outcome&)> finished = {});

    /// Notifies of a new result.
    Observable& observable() { return *observable_; }

private:
    /// What the owner was shown when a change was requested.
    struct Reviewed {
        std::string id;            ///< of the machine
        std::string command = {};  ///< of the process
    };
    /// A command that changes another machine.
    struct Command {
        std::string machine;  ///< the identifier of its record
        std::string target;
        std::string text;
        std::chrono::milliseconds timeout;
        std::string_view successMark;
        std::string runningMessage;
        std::string doneMessage;
        std::string failedMessage;
    };

    /// Null when the host is not listed by the latest scan. Of several machines with the same name,
    /// the one with this identifier, or else the first.
    const RemoteHealth* latest(const ConfirmationRequest& request, const Reviewed& reviewed) const;
    Outcome performRemotePurge(const RemoteHealth& machine, const Reviewed& reviewed);
    Outcome performRemoteQuit(const RemoteHealth& machine, const RemoteProcess& process,
                              const Reviewed& reviewed);
    Outcome run(const Command& command);

    bool isProtected(const RemoteHealth& machine, const RemoteProcess& process) const;
    std::optional<std::string> targetOf(const RemoteHealth& machine) const;
    Outcome copyKeyGeneration();
    Outcome finishExport(const std::filesystem::path& file, const Outcome& written);
    Outcome record(Outcome outcome) const;
    /// Keeps it as the result of that machine.
    void keepResult(const std::string& machine, const Outcome& outcome);
    /// Both.
    Outcome recordResult(const std::string& machine, Outcome outcome);

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    std::map<std::string, RemoteActionResult> results_;
    JobScope jobs_;
    std::vector<ConfirmationDesk::Registration> handlers_;
};

}  // namespace tallowcrest
