#pragma once

#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class GaugeCard;
class MetricCard;

/// CPU load, memory pressure and what memory is left. Main thread.
class GaugesBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit GaugesBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    GaugeCard* cpuGauge_ = nullptr;
    GaugeCard* memoryGauge_ = nullptr;
    MetricCard* reclaimable_ = nullptr;
};

}  // namespace tallowcrest
