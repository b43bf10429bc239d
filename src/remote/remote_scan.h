#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/outcome.h"
#include "core/remote_records.h"
#include "core/services.h"
#include "core/settings/settings_store.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class Tailnet;
class ToolRunner;

/// The machine that a running scan asks now.
struct RemoteScanProgress {
    std::size_t number = 0;  ///< from 1
    std::size_t count = 0;
    std::string hostName = {};
    std::string address = {};

    bool operator==(const RemoteScanProgress&) const = default;
};

/// What the scans of other machines have found.
struct RemoteScanState {
    /// One record per machine of the last scan, in the order of the tailnet. Empty before the first
    /// scan of this run. A scan that was canceled replaces or adds only those that it reached; what
    /// has left the tailnet since then comes last.
    std::vector<RemoteHealth> remoteHealth;
    /// How many of the records the last scan did not reach, because it was canceled.
    std::size_t keptRecords = 0;
    /// How many machines of the tailnet it did not reach either and that have no record.
    std::size_t unknownMachines = 0;
    bool remoteScanInProgress = false;  ///< at least one scan is under way
    bool isCanceling = false;           ///< all that are under way were canceled
    /// Of the latest scan that is under way and not canceled. Absent without one and before the
    /// first machine.
    std::optional<RemoteScanProgress> progress;
    /// In how many scans an application group came first, by "host: group", restarts included.
    SettingsTable remoteTopAppSamples;
};

/// Samples the other machines of the tailnet over the secure shell, one after the other. It changes
/// nothing on them. Main thread.
class RemoteScan {
public:
    /// Begins with the history and the counts that an earlier run left. The references must outlive
    /// the object, and `tools` every scan under way.
    RemoteScan(const Services& services, Tailnet& tailnet, ToolRunner& tools);
    ~RemoteScan();
    RemoteScan(const RemoteScan&) = delete;
    RemoteScan& operator=(const RemoteScan&) = delete;

    const RemoteScanState& state() const { return state_; }

    /// Oldest first, all machines together. A point only for a scan that reached the machine.
    const std::vector<RemoteHistoryPoint>& remoteHistory() const { return *remoteHistory_; }

    /// Whether there is a machine to scan: a Mac that is online and, if the settings include them,
    /// a Linux machine.
    bool hasMachinesToScan() const;

    /// How many Linux machines are online when the settings leave them out and there is nothing
    /// else to scan; else 0.
    std::size_t linuxMachinesLeftOut() const;

    /// Begins a scan and returns at once: asked, or refused when there is nothing to scan. A scan
    /// already under way goes on; the one that ends last leaves its results.
    Outcome scanRemoteMacs();

    /// Publishes the results of a scan that has ended.
    void finishRemoteScan(std::vector<RemoteHealth> results);

    /// Ends the scan under way, or all of them, without the answer of the machine that is asked
    /// now. The machines that were not reached keep their records. Returns at once: asked, or
    /// ignored when none runs. The end is recorded. A scan that begins later is not concerned.
    Outcome cancelScan();

    /// Notifies of a changed state and of new points of the history.
    Observable& observable() { return *observable_; }

private:
    /// A scan under way.
    struct Running;

    bool isScanned(const TailDevice& device) const;
    /// Gives the scans under way the present settings, which they read for each machine.
    void publishContext();
    void performRemoteScan(std::vector<TailDevice> devices);
    void finishCanceledScan(std::vector<RemoteHealth> results, std::size_t machines);
    void recordRemoteSamples(const std::vector<RemoteHealth>& results);
    void sortByTailnet();
    /// Brings the state up to date with the scans under way.
    void publishRunning();

    Services services_;
    Tailnet& tailnet_;
    ToolRunner& tools_;
    std::unique_ptr<Observable> observable_;
    RemoteScanState state_;
    StoredList<std::vector<RemoteHistoryPoint>> remoteHistory_;
    std::vector<std::shared_ptr<Running>> running_;  ///< the latest last
    ObserverGroup contextChanges_;
    JobScope jobs_;
};

}  // namespace tallowcrest
