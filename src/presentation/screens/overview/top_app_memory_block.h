#pragma once

#include <optional>

#include "presentation/screens/overview/overview_lines.h"
#include "presentation/screens/shared/overview_block.h"
#include "presentation/widgets/reserved_rows.h"

namespace tallowcrest {

class BarList;

/// The largest application groups by resident memory. Main thread.
class TopAppMemoryBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TopAppMemoryBlock();

    /// `snapshot` is absent before the first sample.
    void show(const std::optional<SystemSnapshot>& snapshot);

private:
    void fitBars();

    BarList* bars_ = nullptr;
    ReservedRows room_;
};

}  // namespace tallowcrest
