#pragma once

#include "presentation/screens/overview/kept_room.h"
#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class BarList;

/// The largest application groups by resident memory. Main thread.
class TopAppMemoryBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit TopAppMemoryBlock(SystemMonitor& monitor);

protected:
    void showHeader() override;
    void showContent() override;

private:
    void fitBars();

    BarList* bars_ = nullptr;
    KeptRoom room_;
};

}  // namespace tallowcrest
