#include "sampling/latest_sample.h"

#include <algorithm>
#include <utility>

#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "sampling/app_impact.h"
#include "sampling/highest_counts.h"

namespace tallowcrest {
LatestSample::LatestSample(SettingsOwner& settings, MainQueue& mainQueue)
    : observable_(std::make_unique<Observable>(mainQueue)),
      firstSample_(std::make_unique<Observable>(mainQueue)),
      history_(settings, stored::history) {}

LatestSample::~LatestSample() = default;

void LatestSample::setLatestProcesses(std::vector<ProcessSample> processes,
                                      std::vector<std::size_t> impactOrder) {
    latestProcesses_ = std::move(processes);
    impactOrder_ = std::move(impactOrder);
}

void LatestSample::setSnapshot(SystemSnapshot snapshot) {
    if (!snapshot_) {
        firstSample_->changed();
    }
    snapshot_ = std::move(snapshot);
    observable_->changed();
}

void LatestSample::regroup(const ProtectedAppNames& protectedAppNames,
                           const ProtectionPolicy& policy) {
    if (snapshot_) {
        snapshot_->appImpacts = listedAppImpacts(latestProcesses_, protectedAppNames, policy);
        observable_->changed();
    }
}

void LatestSample::appendHistoryPoint() {
    if (!snapshot_) {
        return;
    }
    ++pointsOfThisRun_;
    history_.change([this](std::vector<HistoryPoint>& points) {
        points.push_back(HistoryPoint{UUID::random(), snapshot_->sampledAt, snapshot_->cpuPercent,
                                      snapshot_->memory.pressure});
        if (points.size() > maximumHistory) {
            points.erase(points.begin(),
                         points.end() - static_cast<std::ptrdiff_t>(maximumHistory));
        }
    });
    observable_->changed();
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
    observable_->changed();
}

void LatestSample::setSessionInsights(std::vector<SessionInsight> insights) {
    sessionInsights_ = std::move(insights);
    observable_->changed();
}

}  // namespace tallowcrest
