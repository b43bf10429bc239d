#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/outcome.h"
#include "core/services.h"
#include "disk/disk_ports.h"
#include "disk/disk_records.h"
#include "disk/stoppable_run.h"

namespace tallowcrest {

class Automation;
class LatestSample;
class Observable;
class ToolRunner;

/// How far a scan of the storage areas is.
struct StorageScanProgress {
    std::size_t areasDone = 0;
    std::size_t areas = 0;
    /// Of those that are being measured, the one that takes longest; empty when there is none.
    std::string area = {};
    std::int64_t seconds = 0;  ///< how long that one has taken so far

    bool operator==(const StorageScanProgress&) const = default;
};

struct StorageScanState {
    /// Largest first, the remainder among them. Those of the last scan; empty before the first.
    std::vector<DiskStorageOffender> diskStorageOffenders;
    bool diskStorageScanInProgress = false;
    StorageScanProgress progress;  ///< meaningless while no scan is in progress
    bool isStopping = false;       ///< the scan was asked to stop
};

/// Measures the well-known areas of the disk. Reads only. Its status line is that of `Automation`.
/// Main thread.
class StorageScan {
public:
    /// The references must outlive the object, and `tools` every scan under way.
    struct Dependencies {
        Services services;
        const LatestSample& sample;
        Automation& automation;
        ToolRunner& tools;
        DiskPorts ports;
    };

    explicit StorageScan(Dependencies dependencies);
    ~StorageScan();
    StorageScan(const StorageScan&) = delete;
    StorageScan& operator=(const StorageScan&) = delete;

    const StorageScanState& state() const { return state_; }

    /// Begins a scan. Ignored while one is in progress.
    Outcome scanStorageAreas();

    /// Ends the scan with the areas that have been measured. The tools that measure others are
    /// ended, and not waited for longer than two seconds. Ignored while none is in progress.
    Outcome stop();

    /// The name of the remainder, also while there is none.
    std::string remainderName() const;
    /// As in `DiskPlaces`.
    const std::string& volumes() const { return dependencies_.ports.places.volumes; }

    /// Whether there is a file manager to show folders in.
    bool canReveal() const;
    /// Shows the folder of a row in the file manager.
    Outcome revealStorageOffender(const DiskStorageOffender& offender);

    /// Notifies of a changed state.
    Observable& observable() { return *observable_; }

private:
    class Measuring;

    void measure(const std::shared_ptr<Measuring>& measuring);
    void showProgress();
    void finish();
    void finishComplete(const Measuring& measuring);
    void finishStopped(const Measuring& measuring);

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    StorageScanState state_;
    std::shared_ptr<Measuring> measuring_;  ///< null while no scan is in progress
    std::size_t workersLeft_ = 0;
    std::unique_ptr<RepeatingTimer> progressTimer_;  ///< while a scan is in progress
    StoppableRun run_;
};

}  // namespace tallowcrest
