#pragma once

#include <vector>

#include "presentation/screens/screen.h"

namespace tallowcrest {

class OverviewBlock;
class SystemMonitor;

/// Health at a glance and the safest next step: what needs attention first, then the figures.
/// Main thread.
class OverviewPage final : public Screen {
    Q_OBJECT

public:
    explicit OverviewPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;

private:
    std::vector<OverviewBlock*> blocks_;
};

}  // namespace tallowcrest
