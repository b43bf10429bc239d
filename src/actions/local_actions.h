#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "actions/action_ports.h"
#include "core/confirmation_desk.h"
#include "core/jobs/jobs.h"
#include "core/local_records.h"
#include "core/outcome.h"
#include "core/services.h"
#include "core/settings/settings.h"
#include "sampling/protection.h"

namespace tallowcrest {

class HeldProcess;
class LatestSample;
class Observable;
class ReviewTarget;
struct PurgeResult;

/// The only operations that act on other programs of this machine. Each has two halves: a request
/// half that checks and asks for a confirmation, and an execution half that the confirmation runs,
/// which checks again. Nothing stronger than TERM is ever sent. Main thread.
class LocalActions {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        LatestSample& sample;
        ReviewTarget& review;
        ProtectionPolicy protection;
        /// Takes a new sample, so that lists and recommendations show the effect.
        std::function<void()> refresh;
        LocalActionPorts ports;
    };

    /// Registers the kinds of confirmation that it owns.
    explicit LocalActions(Dependencies dependencies);
    ~LocalActions();
    LocalActions(const LocalActions&) = delete;
    LocalActions& operator=(const LocalActions&) = delete;

    /// Requests confirmation to quit the process under review; refused without one and for a
    /// protected one. A process that is not in the latest sample is not checked for protection; the
    /// request names it by its pid.
    Outcome requestQuitSelectedProcess();
    /// The same for the group under review, or for the heaviest one when none is selected. Also
    /// refused when the group has no process that may be quit.
    Outcome requestQuitSelectedApp();
    /// Requests confirmation to purge the file caches. Never refused.
    Outcome requestPurge();

    /// Selects a process that is safe to review, and requests a purge when memory pressure is at or
    /// above the warning threshold. Quits nothing and purges nothing. Refused before the first
    /// sample.
    Outcome optimizeSafely();

    /// Puts a group on the owner's Never Quit list, or takes it off, and regroups the latest sample
    /// at once.
    Outcome toggleNeverQuit(const std::string& group);
    /// Only takes it off. Ignored when it is not on the list.
    Outcome removeFromNeverQuit(const std::string& group);

    /// Whether a confirmed purge is under way. Another one is refused meanwhile.
    bool isPurging() const { return isPurging_; }

    /// Notifies of changes of `isPurging`.
    Observable& observable() { return *observable_; }

private:
    /// A process that may get TERM when its application could not be asked to quit.
    struct GroupMember {
        ProcessSample row;
        /// Null when the row has a start time, which identifies the process.
        std::unique_ptr<HeldProcess> process;
    };

    Outcome quitProcess(const ConfirmationRequest& request, HeldProcess* process);
    Outcome quitAppGroup(const std::string& group);
    Outcome finishAppGroup(const std::string& group, bool wasAskedGracefully);
    std::vector<GroupMember> membersForTerm(const std::string& group);
    Outcome runPurge();
    void finishPurge(const PurgeResult& result);

    const ProtectedAppNames& neverQuit() const;
    Outcome setNeverQuit(ProtectedAppNames names, std::string message);
    Outcome record(Outcome outcome) const;

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    bool isPurging_ = false;
    std::map<std::string, std::vector<GroupMember>> membersOfAskedGroups_;
    JobScope jobs_;
    std::vector<ConfirmationDesk::Registration> handlers_;
};

}  // namespace tallowcrest
