#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/history_encoder.h"
#include "core/local_records.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The latest sample and the session timeline. Main thread.
class LatestSample {
public:
    /// 180 points at one in 4 seconds cover 12 minutes.
    static constexpr std::size_t maximumHistory = 180;
    static constexpr std::size_t maximumTopAppNames = 80;
    static constexpr std::size_t keptTopAppNames = 40;

    /// Begins with the stored history as it stands; the first sample trims it. The references must
    /// outlive the object.
    LatestSample(SettingsOwner& settings, MainQueue& mainQueue);
    LatestSample(const LatestSample&) = delete;
    LatestSample& operator=(const LatestSample&) = delete;

    /// Absent until the first sample has landed.
    const std::optional<SystemSnapshot>& snapshot() const { return snapshot_; }
    /// All rows of the latest process table, in the table's order.
    const std::vector<ProcessSample>& latestProcesses() const { return latestProcesses_; }
    /// The indexes of `latestProcesses` in impact order. The snapshot holds only the first of them,
    /// but a search covers every process.
    const std::vector<std::size_t>& impactOrder() const { return impactOrder_; }
    /// Oldest first. Begins with the points that an earlier run stored.
    const std::vector<HistoryPoint>& history() const { return history_; }
    /// The points of `history` that this run added.
    std::span<const HistoryPoint> historyOfThisRun() const {
        return std::span(history_).last(std::min(pointsOfThisRun_, history_.size()));
    }
    /// In how many samples of this run each application group came first.
    const std::map<std::string, std::int64_t>& topAppSamples() const { return topAppSamples_; }

    /// `impactOrder` holds the indexes of `processes` in impact order.
    void setLatestProcesses(std::vector<ProcessSample> processes,
                            std::vector<std::size_t> impactOrder);
    void setSnapshot(SystemSnapshot snapshot);
    /// Groups the latest processes anew under another Never Quit list: which process of a group may
    /// be touched must not wait for the next sample. Without a snapshot, nothing.
    void regroup(const ProtectedAppNames& protectedAppNames, const ProtectionPolicy& policy);
    /// Appends the current snapshot's point, drops the oldest beyond `maximumHistory`, saves.
    void appendHistoryPoint();
    /// Counts the first group of the current snapshot, if there is one.
    void countTopApp();

    const std::vector<Recommendation>& recommendations() const { return recommendations_; }
    void setRecommendations(std::vector<Recommendation> recommendations);
    const std::vector<SessionInsight>& sessionInsights() const { return sessionInsights_; }
    void setSessionInsights(std::vector<SessionInsight> insights);

    Observable& observable() { return observable_; }

private:
    SettingsOwner& settings_;
    Observable observable_;
    HistoryEncoder encoder_;
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
