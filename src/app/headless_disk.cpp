#include "app/headless_disk.h"

#include <utility>

#include "actions/actions.h"
#include "app/headless_format.h"
#include "core/jobs/jobs.h"
#include "disk/disk.h"
#include "disk/storage_ranking.h"
#include "monitor/system_monitor.h"

namespace tallowcrest {

HeadlessDisk::HeadlessDisk(SystemMonitor& monitor, Task task, bool asJSON, Found found)
    : monitor_(monitor),
      task_(task),
      asJSON_(asJSON),
      found_(std::move(found)),
      changes_(monitor.services().jobs.mainQueue(), [this] { finish(); }) {}

Outcome HeadlessDisk::begin() {
    Disk& disk = monitor_.disk();
    if (task_ == Task::storage) {
        changes_.observe({&disk.storage.observable()});
        return disk.storage.scanStorageAreas();
    }
    changes_.observe({&disk.files.observable()});
    return disk.files.analyzePersonalFiles();
}

void HeadlessDisk::finish() {
    const StorageScanState& storage = monitor_.disk().storage.state();
    const PersonalFilesState& files = monitor_.disk().files.state();
    const bool isBusy =
        task_ == Task::storage ? storage.diskStorageScanInProgress : files.storageAnalyzerBusy;
    if (isDone_ || isBusy) {
        return;
    }
    isDone_ = true;
    std::string text;
    if (task_ == Task::storage) {
        for (const DiskStorageOffender& area : storage.diskStorageOffenders) {
            text += asJSON_ ? storageJSON(area) : storageRow(area);
        }
        found_(text, monitor_.actions().automation.diskAutopilotStatus());
        return;
    }
    for (const StorageOptimizationSuggestion& file : files.storageOptimizationSuggestions) {
        text += asJSON_ ? largeFileJSON(file) : largeFileRow(file);
    }
    found_(text, files.storageAnalyzerStatus);
}

}  // namespace tallowcrest
