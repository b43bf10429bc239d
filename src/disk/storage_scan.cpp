#include "disk/storage_scan.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <stop_token>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "actions/automation.h"
#include "actions/tool_runner.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/observable.h"
#include "disk/file_names.h"
#include "disk/storage_ranking.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {
namespace {

/// More at a time would only make the disk slower.
constexpr std::size_t workers = 3;
constexpr std::chrono::milliseconds longestMeasurement{60000};
constexpr std::chrono::milliseconds progressInterval{200};

}  // namespace

/// One scan, shared by its workers. Any thread.
class StorageScan::Measuring {
public:
    using VolumeOf = std::function<std::optional<Volume>(const std::string& path)>;

    Measuring(std::vector<StorageArea> areas, std::optional<UsedSpace> used, std::string home,
              VolumeOf volumeOf)
        : areas_(std::move(areas)),
          used_(std::move(used)),
          home_(std::move(home)),
          volumeOf_(std::move(volumeOf)) {}

    /// Measures one area after the other until none is left or a stop is requested.
    void work(ToolRunner& tools, const Clock& clock, const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const StorageArea* const area = next(clock.now());
            if (area == nullptr) {
                return;
            }
            std::optional<MeasuredArea> measured = measure(*area, tools, stop);
            if (!measured && stop.stop_requested()) {
                return;  // it was cut short
            }
            const std::lock_guard guard(lock_);
            if (measured) {
                measured_.push_back(*std::move(measured));
            }
            std::erase_if(atHand_, [area](const AtHand& each) { return each.area == area; });
        }
    }

    /// What has been measured so far.
    std::vector<MeasuredArea> measured() const {
        const std::lock_guard guard(lock_);
        return measured_;
    }
    StorageScanProgress progress(Date now) const {
        const std::lock_guard guard(lock_);
        StorageScanProgress progress{next_ - atHand_.size(), areas_.size()};
        if (!atHand_.empty()) {
            progress.area = atHand_.front().area->label;
            // The clock may have been set back.
            progress.seconds = std::max<std::int64_t>(
                0, static_cast<std::int64_t>(secondsBetween(atHand_.front().since, now)));
        }
        return progress;
    }
    /// Whether nothing is left to measure.
    bool isComplete() const {
        const std::lock_guard guard(lock_);
        return isHomeVolumeRead_ && next_ == areas_.size() && atHand_.empty();
    }
    /// To be called when the measuring is complete.
    const std::optional<UsedSpace>& used() const { return used_; }

    void readHomeVolume() {
        const std::optional<Volume> volume = volumeOf(home_);
        const std::lock_guard guard(lock_);
        isHomeVolumeRead_ = true;
        if (used_) {
            used_->volume = volume;
        }
    }

private:
    struct AtHand {
        const StorageArea* area;
        Date since;
    };

    const StorageArea* next(Date now) {
        const std::lock_guard guard(lock_);
        return next_ < areas_.size() ? atHand_.emplace_back(&areas_[next_++], now).area : nullptr;
    }

    std::optional<Volume> volumeOf(const std::string& path) const {
        return volumeOf_ ? volumeOf_(path) : std::nullopt;
    }

    /// Blocks for at most the time of one measurement. Absent when the folder is missing or cannot
    /// be measured, and after a stop.
    std::optional<MeasuredArea> measure(const StorageArea& area, ToolRunner& tools,
                                        const std::stop_token& stop) const {
        if (!folderExists(area.folder)) {
            return std::nullopt;
        }
        // Of a link, the tool would measure the link.
        const std::string place = resolvedPath(area.folder);
        const auto bytes = parseDiskUsage(
            tools.runToolForBytes("/usr/bin/du", {"-sk", "-x", place}, longestMeasurement, stop));
        return bytes ? std::optional(
                           MeasuredArea{{area.label, area.folder, *bytes}, place, volumeOf(place)})
                     : std::nullopt;
    }

    const std::vector<StorageArea> areas_;
    std::optional<UsedSpace> used_;
    const std::string home_;
    const VolumeOf volumeOf_;
    mutable std::mutex lock_;
    bool isHomeVolumeRead_ = false;
    std::size_t next_ = 0;
    std::vector<AtHand> atHand_;  ///< the oldest first
    std::vector<MeasuredArea> measured_;
};

StorageScan::StorageScan(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      run_(dependencies_.services.jobs) {}

StorageScan::~StorageScan() = default;

Outcome StorageScan::scanStorageAreas() {
    const DiskPlaces& places = dependencies_.ports.places;
    if (places.areas.empty()) {
        return dependencies_.services.log.record(
            Outcome::refused("The storage scan is not available here."));
    }
    if (state_.diskStorageScanInProgress) {
        return Outcome::ignored();
    }
    state_.diskStorageScanInProgress = true;
    state_.progress = {0, places.areas.size()};
    observable_->changed();
    dependencies_.automation.setDiskAutopilotStatus(
        "Measuring storage areas; large folders can take up to a minute…");
    const auto& snapshot = dependencies_.sample.snapshot();
    measuring_ = std::make_shared<Measuring>(
        places.areas,
        snapshot ? std::optional(UsedSpace{snapshot->disk, {}, places.unreadableData})
                 : std::nullopt,
        places.home, dependencies_.ports.volumeOf);
    measure(measuring_);
    return Outcome::asked();
}

void StorageScan::measure(const std::shared_ptr<Measuring>& measuring) {
    workersLeft_ = workers;
    progressTimer_ = dependencies_.services.jobs.mainQueue().scheduleRepeating(
        progressInterval, [this] { showProgress(); });
    JobScope& jobs = run_.begin();
    for (std::size_t i = 0; i < workers; ++i) {
        jobs.run(
            Lane::storageScan,
            [measuring, &tools = dependencies_.tools, &clock = dependencies_.services.clock,
             isFirst = i == 0, token = run_.stopToken()](const Stop& stop) {
                const EitherStop either(stop.stopToken(), token);
                if (isFirst) {
                    measuring->readHomeVolume();
                }
                measuring->work(tools, clock, either.token());
            },
            [this] {
                if (--workersLeft_ == 0) {
                    finish();
                }
            });
    }
}

void StorageScan::showProgress() {
    StorageScanProgress progress = measuring_->progress(dependencies_.services.clock.now());
    if (progress != state_.progress) {
        state_.progress = std::move(progress);
        observable_->changed();
    }
}

void StorageScan::finish() {
    run_.end();
    progressTimer_.reset();
    state_.isStopping = false;
    state_.diskStorageScanInProgress = false;
    const auto measuring = std::exchange(measuring_, nullptr);
    // What was asked to stop can have ended just before.
    if (measuring->isComplete()) {
        finishComplete(*measuring);
    } else {
        finishStopped(*measuring);
    }
}

void StorageScan::finishComplete(const Measuring& measuring) {
    state_.diskStorageOffenders = rankedOffenders(measuring.measured(), measuring.used());
    observable_->changed();
    dependencies_.automation.setDiskAutopilotStatus(
        storage_texts::complete(state_.diskStorageOffenders));
    dependencies_.services.log.recordEvent(
        ActivityKind::diskStorage,
        storage_texts::completeEvent(state_.diskStorageOffenders.size(),
                                     dependencies_.ports.places.unreadableData));
}

void StorageScan::finishStopped(const Measuring& measuring) {
    const StorageScanProgress progress = measuring.progress(dependencies_.services.clock.now());
    const std::size_t done = progress.areasDone;
    const std::size_t all = progress.areas;
    std::vector<DiskStorageOffender> rows = rankedOffenders(measuring.measured(), std::nullopt);
    const std::size_t count = rows.size();
    // Rows of an earlier scan are better than none.
    if (!rows.empty()) {
        state_.diskStorageOffenders = std::move(rows);
    }
    observable_->changed();
    dependencies_.automation.setDiskAutopilotStatus(storage_texts::stopped(done, all));
    dependencies_.services.log.recordEvent(ActivityKind::diskStorage,
                                           storage_texts::stoppedEvent(count, done, all));
}

Outcome StorageScan::stop() {
    if (!run_.stopOrForget([this] { finish(); })) {
        return Outcome::ignored();
    }
    state_.isStopping = true;
    observable_->changed();
    return Outcome::asked();
}

std::string StorageScan::remainderName() const {
    return tallowcrest::remainderName(dependencies_.ports.places.unreadableData);
}

bool StorageScan::canReveal() const {
    return static_cast<bool>(dependencies_.ports.desktop.reveal);
}

Outcome StorageScan::revealStorageOffender(const DiskStorageOffender& offender) {
    if (!canReveal()) {
        return dependencies_.services.log.record(
            Outcome::refused("There is no file manager here."));
    }
    dependencies_.ports.desktop.reveal(offender.path);
    return dependencies_.services.log.record(
        Outcome::done(fmt::format("Revealed {} in Finder.", offender.name)));
}

}  // namespace tallowcrest
