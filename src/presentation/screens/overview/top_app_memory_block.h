#pragma once

#include <optional>

#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/overview/overview_lines.h"

namespace tallowcrest {

class BarList;

/// The largest application groups by resident memory. Main thread.
class TopAppMemoryBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TopAppMemoryBlock();

    /// Absent before the first sample.
    void show(const std::optional<SystemSnapshot>& snapshot);

private:
    void fitBars();

    BarList* bars_ = nullptr;
    KeptRoom room_;
};

}  // namespace tallowcrest
