#pragma once

#include "core/routes.h"
#include "presentation/screens/screen.h"

namespace tallowcrest {

class DiskAutopilotBlock;
class ElidedLabel;
class SystemMonitor;
struct WindowState;

/// What a route says whose screen is still to come: one plain line, below the workspace bar where
/// the route is a step of that, and above what a step has already. Main thread.
class ComingPage final : public Screen {
    Q_OBJECT

public:
    ComingPage(SystemMonitor& monitor, WindowState& state, AppRoute route,
               QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;

private:
    DiskAutopilotBlock* makeDisk();

    SystemMonitor& monitor_;
    WindowState& state_;
    AppRoute route_;
    ElidedLabel* line_ = nullptr;
    DiskAutopilotBlock* disk_ = nullptr;  ///< on the one route that has it
};

}  // namespace tallowcrest
