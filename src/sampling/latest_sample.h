#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/observable.h"

namespace tallowcrest {

/// The latest sample and the session timeline. Main thread.
class LatestSample {
public:
    /// 180 points at one in 4 seconds cover 12 minutes.
    static constexpr std::size_t maximumHistory = 180;
    static constexpr std::size_t maximumTopAppNames = 80;
    static constexpr std::size_t keptTopAppNames = 40;

    using SaveHistory = std::function<void(const std::vector<HistoryPoint>&)>;

    /// `storedHistory` is taken over as it stands; the first sample trims it.
    LatestSample(Observable& observable, std::vector<HistoryPoint> storedHistory,
                 SaveHistory saveHistory);

    /// Absent until the first sample has landed.
    const std::optional<SystemSnapshot>& snapshot() const { return snapshot_; }
    /// Every row of the latest process table, unranked and uncapped.
    const std::vector<ProcessSample>& latestProcesses() const { return latestProcesses_; }
    /// The indexes of `latestProcesses` in impact order. The snapshot's own ranking stops at its
    /// cap; a person who looks for a process looks for any process.
    const std::vector<std::size_t>& impactOrder() const { return impactOrder_; }
    /// Oldest first. Begins with what an earlier run stored.
    const std::vector<HistoryPoint>& history() const { return history_; }
    /// The part of it that samples of this run added. Points into the history.
    std::span<const HistoryPoint> historyOfThisRun() const {
        return std::span(history_).last(std::min(pointsOfThisRun_, history_.size()));
    }
    /// How many samples each application group led in this run.
    const std::map<std::string, std::int64_t>& topAppSamples() const { return topAppSamples_; }

    /// `impactOrder` holds the indexes of `processes` in impact order.
    void setLatestProcesses(std::vector<ProcessSample> processes,
                            std::vector<std::size_t> impactOrder);
    void setSnapshot(SystemSnapshot snapshot);
    /// The groups of the snapshot under another Never Quit list. Without a snapshot, nothing.
    void setAppImpacts(std::vector<AppImpact> appImpacts);
    /// Appends the current snapshot's point, drops the oldest beyond `maximumHistory`, saves.
    void appendHistoryPoint();
    /// Counts the leading group of the current snapshot, if it has one.
    void countTopApp();

    const std::vector<Recommendation>& recommendations() const { return recommendations_; }
    void setRecommendations(std::vector<Recommendation> recommendations);
    const std::vector<SessionInsight>& sessionInsights() const { return sessionInsights_; }
    void setSessionInsights(std::vector<SessionInsight> insights);

private:
    Observable& observable_;
    SaveHistory saveHistory_;
    std::optional<SystemSnapshot> snapshot_;
    std::vector<ProcessSample> latestProcesses_;
    std::vector<std::size_t> impactOrder_;
    std::vector<HistoryPoint> history_;
    std::size_t pointsOfThisRun_ = 0;
    std::map<std::string, std::int64_t> topAppSamples_;
    std::vector<Recommendation> recommendations_;
    std::vector<SessionInsight> sessionInsights_;
};

}  // namespace tallowcrest
