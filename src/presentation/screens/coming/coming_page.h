#pragma once

#include "core/routes.h"
#include "presentation/screens/shared/screen.h"

namespace tallowcrest {

class DiskAutopilotBlock;
class ElidedLabel;
class SystemMonitor;
struct WindowState;

/// Stands in for a screen that does not exist yet: a line that says what it will show, with the
/// workspace bar above it on the steps of the Optimize workspace, and with the Disk Autopilot block
/// below it on "Recommended". Main thread.
class ComingPage final : public Screen {
    Q_OBJECT

public:
    ComingPage(SystemMonitor& monitor, WindowState& state, AppRoute route,
               QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    SystemMonitor& monitor_;
    WindowState& state_;
    AppRoute route_;
    ElidedLabel* line_ = nullptr;
    DiskAutopilotBlock* disk_ = nullptr;  ///< null on the routes without it
};

}  // namespace tallowcrest
