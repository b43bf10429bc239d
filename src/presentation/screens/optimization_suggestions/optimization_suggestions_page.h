#pragma once

#include <memory>

#include "presentation/screens/shared/screen.h"

namespace tallowcrest {

class AdviceCard;
class DiskAutopilotBlock;
class NextStepCard;
class SummaryCards;
class SystemMonitor;
struct WindowState;

/// "Recommended", the first step of the Optimize workspace: how far CPU, memory and disk are from
/// their limits, and what to do first. Nothing is changed from here. Main thread.
class OptimizationSuggestionsPage final : public Screen {
    Q_OBJECT

public:
    OptimizationSuggestionsPage(SystemMonitor& monitor, WindowState& state,
                                QWidget* parent = nullptr);
    ~OptimizationSuggestionsPage() override;

    void refresh() override;
    std::vector<Observable*> shows() const override;

private:
    void makeNextStep();
    void makeAdvice();

    SystemMonitor& monitor_;
    WindowState& state_;
    std::unique_ptr<SummaryCards> metrics_;
    NextStepCard* nextStep_ = nullptr;
    AdviceCard* advice_ = nullptr;
    DiskAutopilotBlock* disk_ = nullptr;
};

}  // namespace tallowcrest
