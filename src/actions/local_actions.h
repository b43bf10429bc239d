#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "actions/action_ports.h"
#include "actions/cache_purge.h"
#include "actions/confirmation_desk.h"
#include "actions/graceful_quit.h"
#include "actions/process_control.h"
#include "actions/review_target.h"
#include "core/jobs/jobs.h"
#include "core/local_records.h"
#include "core/observable.h"
#include "core/outcome.h"
#include "core/services.h"
#include "sampling/latest_sample.h"
#include "sampling/protection.h"

namespace tallowcrest {

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
        ConfirmationDesk& confirmations;
        ProtectionPolicy protection;
        /// Takes a new sample, so that lists and recommendations show the effect.
        std::function<void()> refresh;
        LocalActionPorts ports;
    };

    /// Registers the kinds of confirmation that it owns.
    explicit LocalActions(Dependencies dependencies);
    LocalActions(const LocalActions&) = delete;
    LocalActions& operator=(const LocalActions&) = delete;

    /// Asks for a yes to quitting the process under review, unless it is protected. One that is not
    /// in the latest sample is let through under its number: the dialog is the last look at it.
    Outcome requestQuitSelectedProcess();
    /// The same for the group under review, else for the heaviest one.
    Outcome requestQuitSelectedApp();
    Outcome requestPurge();

    /// Selects a process that is safe to review, and asks for a purge when memory pressure is at or
    /// above the warning threshold. Quits nothing and purges nothing.
    Outcome optimizeSafely();

    /// Puts a group on the owner's Never Quit list, or takes it off.
    Outcome toggleNeverQuit(const std::string& group);

    /// Whether a confirmed purge is under way. Another one is not begun meanwhile.
    bool isPurging() const { return isPurging_; }

    /// Tells of `isPurging`.
    Observable& observable() { return observable_; }

private:
    /// The process that a pending request is about, held since the request was built.
    struct Reviewed {
        UUID request;
        /// Null for a number that no process can have, and for a process that is gone and of which
        /// no start time was ever known.
        std::unique_ptr<HeldProcess> process;
    };

    /// A process that may get TERM when its group is not asked gracefully.
    struct GroupMember {
        ProcessSample row;
        /// Null where the row's start time tells the process from a later one.
        std::unique_ptr<HeldProcess> process;
    };

    Outcome quitProcess(const ConfirmationRequest& request);
    Outcome quitAppGroup(const std::string& group);
    void finishAppGroup(const std::string& group, bool wasAskedGracefully);
    std::vector<GroupMember> membersForTerm(const std::string& group);
    Outcome runPurge();
    void finishPurge(const PurgeResult& result);

    const TextSet& neverQuit() const;
    Outcome record(Outcome outcome) const;

    Dependencies with_;
    Observable observable_;
    Reviewed reviewed_;
    bool isPurging_ = false;
    std::map<std::string, std::vector<GroupMember>> membersOfAskedGroups_;
    JobScope jobs_;
};

}  // namespace tallowcrest
