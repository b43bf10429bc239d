#pragma once

#include <optional>

#include "core/local_records.h"
#include "presentation/screens/shared/overview_block.h"

namespace tallowcrest {

class GaugeCard;
class MetricCard;

/// CPU load, memory pressure and free memory. Main thread.
class GaugesBlock final : public OverviewBlock {
    Q_OBJECT

public:
    GaugesBlock();

    /// Before the first sample, without a snapshot, it says that sampling is under way.
    void show(const std::optional<SystemSnapshot>& snapshot);

private:
    GaugeCard* cpuGauge_ = nullptr;
    GaugeCard* memoryGauge_ = nullptr;
    MetricCard* reclaimable_ = nullptr;
};

}  // namespace tallowcrest
