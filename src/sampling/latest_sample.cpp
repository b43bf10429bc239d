#include "sampling/latest_sample.h"

#include <algorithm>
#include <utility>

namespace tallowcrest {
namespace {

using Counts = std::map<std::string, std::int64_t>;

Counts highestCounts(const Counts& counts, std::size_t kept) {
    std::vector<Counts::const_iterator> order;
    order.reserve(counts.size());
    for (auto entry = counts.begin(); entry != counts.end(); ++entry) {
        order.push_back(entry);
    }
    std::stable_sort(order.begin(), order.end(), [](const auto& left, const auto& right) {
        return left->second > right->second;
    });
    order.resize(std::min(order.size(), kept));
    Counts result;
    for (const auto& entry : order) {
        result.insert(*entry);
    }
    return result;
}

}  // namespace

LatestSample::LatestSample(Observable& observable, std::vector<HistoryPoint> storedHistory,
                           SaveHistory saveHistory)
    : observable_(observable),
      saveHistory_(std::move(saveHistory)),
      history_(std::move(storedHistory)) {}

void LatestSample::setLatestProcesses(std::vector<ProcessSample> processes,
                                      std::vector<std::size_t> impactOrder) {
    latestProcesses_ = std::move(processes);
    impactOrder_ = std::move(impactOrder);
}

void LatestSample::setSnapshot(SystemSnapshot snapshot) {
    snapshot_ = std::move(snapshot);
    observable_.changed();
}

void LatestSample::setAppImpacts(std::vector<AppImpact> appImpacts) {
    if (snapshot_) {
        snapshot_->appImpacts = std::move(appImpacts);
        observable_.changed();
    }
}

void LatestSample::appendHistoryPoint() {
    if (!snapshot_) {
        return;
    }
    history_.push_back(HistoryPoint{UUID::random(), snapshot_->sampledAt, snapshot_->cpuPercent,
                                    snapshot_->memory.pressure});
    ++pointsOfThisRun_;
    if (history_.size() > maximumHistory) {
        history_.erase(history_.begin(),
                       history_.end() - static_cast<std::ptrdiff_t>(maximumHistory));
    }
    saveHistory_(history_);
    observable_.changed();
}

void LatestSample::countTopApp() {
    if (!snapshot_ || snapshot_->appImpacts.empty()) {
        return;
    }
    ++topAppSamples_[snapshot_->appImpacts.front().name];
    if (topAppSamples_.size() > maximumTopAppNames) {
        topAppSamples_ = highestCounts(topAppSamples_, keptTopAppNames);
    }
}

void LatestSample::setRecommendations(std::vector<Recommendation> recommendations) {
    recommendations_ = std::move(recommendations);
    observable_.changed();
}

void LatestSample::setSessionInsights(std::vector<SessionInsight> insights) {
    sessionInsights_ = std::move(insights);
    observable_.changed();
}

}  // namespace tallowcrest
