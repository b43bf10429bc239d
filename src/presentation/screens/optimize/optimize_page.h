#pragma once

#include <cstdint>

#include "presentation/screens/shared/screen.h"

namespace tallowcrest {

class CleanupFlowCard;
class DiskAutopilotBlock;
class OffenderCard;
class SystemMonitor;
struct WindowState;

/// The Cleanup step of the Optimize workspace: select a target, see why it matters, choose what to
/// do about it. Nothing is quit or purged without a confirmation. Main thread.
class OptimizePage final : public Screen {
    Q_OBJECT

public:
    explicit OptimizePage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    void makeFlow();
    void makeOffender();
    /// Asks for the details of the rows in view.
    void wantDetails();

    SystemMonitor& monitor_;
    WindowState& state_;
    CleanupFlowCard* flow_ = nullptr;
    DiskAutopilotBlock* disk_ = nullptr;
    OffenderCard* offender_ = nullptr;
    std::uint64_t shownDetails_ = 0;  ///< their revision
};

}  // namespace tallowcrest
