#pragma once

#include <optional>

#include "core/local_records.h"
#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class GaugeCard;
class MetricCard;

/// CPU load, memory pressure and what memory is left. Main thread.
class GaugesBlock final : public OverviewBlock {
    Q_OBJECT

public:
    GaugesBlock();

    /// Absent before the first sample.
    void show(const std::optional<SystemSnapshot>& snapshot);

private:
    GaugeCard* cpuGauge_ = nullptr;
    GaugeCard* memoryGauge_ = nullptr;
    MetricCard* reclaimable_ = nullptr;
};

}  // namespace tallowcrest
