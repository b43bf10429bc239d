#pragma once

#include <vector>

#include "presentation/screens/shared/screen.h"

namespace tallowcrest {

class DiskAutopilotBlock;
class GaugesBlock;
class OverviewBlock;
class RecentActivityBlock;
class RecommendationsBlock;
class SessionInsightsBlock;
class SessionSummaryBlock;
class SystemMonitor;
struct WindowState;
class TimelineBlock;
class TopAppMemoryBlock;
class TopOffenderBlock;
struct TopOffenderFacts;

/// The Overview: the recommendations first, then the figures. Main thread.
class OverviewPage final : public Screen {
    Q_OBJECT

public:
    explicit OverviewPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    void layOutBlocks();
    void connectBlocks();
    TopOffenderFacts offenderFacts() const;
    void analyze();
    void reviewOffender();

    SystemMonitor& monitor_;
    WindowState& state_;
    RecommendationsBlock* recommendations_ = nullptr;
    GaugesBlock* gauges_ = nullptr;
    TimelineBlock* timeline_ = nullptr;
    TopAppMemoryBlock* topAppMemory_ = nullptr;
    DiskAutopilotBlock* diskAutopilot_ = nullptr;
    TopOffenderBlock* topOffender_ = nullptr;
    RecentActivityBlock* recentActivity_ = nullptr;
    SessionSummaryBlock* sessionSummary_ = nullptr;
    SessionInsightsBlock* sessionInsights_ = nullptr;
    std::vector<OverviewBlock*> blocks_;  ///< all but Disk Autopilot, from top to bottom
};

}  // namespace tallowcrest
