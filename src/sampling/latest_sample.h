#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/history_encoder.h"
#include "core/local_records.h"
#include "core/settings/stored_list.h"
#include "sampling/protection.h"

namespace tallowcrest {

class MainQueue;
class Observable;
class SettingsOwner;

/// The latest sample and the session timeline. Main thread.
class LatestSample {
public:
    /// 180 points at one in 4 seconds cover 12 minutes.
    static constexpr std::size_t maximumHistory = 180;
    /// With more names than this, only those with the highest counts are kept.
    static constexpr std::size_t maximumTopAppNames = 80;
    static constexpr std::size_t keptTopAppNames = 40;

    /// Begins with the whole stored history; the first sample trims it. The references must outlive
    /// the object.
    LatestSample(SettingsOwner& settings, MainQueue& mainQueue);
    ~LatestSample();
    LatestSample(const LatestSample&) = delete;
    LatestSample& operator=(const LatestSample&) = delete;

    /// Absent before the first sample.
    const std::optional<SystemSnapshot>& snapshot() const { return snapshot_; }
    /// All rows of the latest process table, in the table's order.
    const std::vector<ProcessSample>& latestProcesses() const { return latestProcesses_; }
    /// The indexes of `latestProcesses` in impact order. The snapshot holds only the first of them,
    /// but a search covers every process.
    const std::vector<std::size_t>& impactOrder() const { return impactOrder_; }
    /// Oldest first. Begins with the points that an earlier run stored.
    const std::vector<HistoryPoint>& history() const { return *history_; }
    /// The points of `history` that this run added.
    std::span<const HistoryPoint> historyOfThisRun() const {
        return std::span(*history_).last(std::min(pointsOfThisRun_, history_->size()));
    }
    /// In how many samples of this run each application group came first.
    const std::map<std::string, std::int64_t>& topAppSamples() const { return topAppSamples_; }

    /// `impactOrder` holds the indexes of `processes` in impact order. Call `setSnapshot`
    /// afterwards, which notifies the observers.
    void setLatestProcesses(std::vector<ProcessSample> processes,
                            std::vector<std::size_t> impactOrder);
    void setSnapshot(SystemSnapshot snapshot);
    /// Rebuilds the groups of the snapshot with another Never Quit list, so that a change of the
    /// list has an effect before the next sample. Does nothing without a snapshot.
    void regroup(const ProtectedAppNames& protectedAppNames, const ProtectionPolicy& policy);
    /// Appends the current snapshot's point, drops the oldest beyond `maximumHistory`, and saves.
    /// Does nothing without a snapshot.
    void appendHistoryPoint();
    /// Counts the first group of the current snapshot, if there is one.
    void countTopApp();

    const std::vector<Recommendation>& recommendations() const { return recommendations_; }
    void setRecommendations(std::vector<Recommendation> recommendations);
    const std::vector<SessionInsight>& sessionInsights() const { return sessionInsights_; }
    void setSessionInsights(std::vector<SessionInsight> insights);

    /// Notifies of a new or regrouped snapshot, a new history point, recommendations and insights.
    Observable& observable() { return *observable_; }
    /// Notifies once, when there is a snapshot for the first time. For what a sample changes only
    /// by being there.
    Observable& firstSample() { return *firstSample_; }

private:
    std::unique_ptr<Observable> observable_;
    std::unique_ptr<Observable> firstSample_;
    std::optional<SystemSnapshot> snapshot_;
    std::vector<ProcessSample> latestProcesses_;
    std::vector<std::size_t> impactOrder_;
    StoredList<std::vector<HistoryPoint>, HistoryEncoder> history_;
    std::size_t pointsOfThisRun_ = 0;
    std::map<std::string, std::int64_t> topAppSamples_;
    std::vector<Recommendation> recommendations_;
    std::vector<SessionInsight> sessionInsights_;
};

}  // namespace tallowcrest
