#pragma once

#include <memory>

#include "presentation/screens/shared/screen.h"

namespace tallowcrest {

class AdviceCard;
class DiskAutopilotBlock;
class NextStepCard;
class StorageAnalyzerCard;
class SummaryCards;
class SystemMonitor;
struct WindowState;

/// "Recommended", the first step of the Optimize workspace: how far CPU, memory and disk are from
/// their limits, what to do first, and the largest personal files. Nothing is changed without a
/// confirmation. Main thread.
class OptimizationSuggestionsPage final : public Screen {
    Q_OBJECT

public:
    OptimizationSuggestionsPage(SystemMonitor& monitor, WindowState& state,
                                QWidget* parent = nullptr);
    ~OptimizationSuggestionsPage() override;

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    void makeNextStep();
    void makeStorageAnalyzer();
    void makeAdvice();

    SystemMonitor& monitor_;
    WindowState& state_;
    std::unique_ptr<SummaryCards> metrics_;
    NextStepCard* nextStep_ = nullptr;
    StorageAnalyzerCard* storageAnalyzer_ = nullptr;
    AdviceCard* advice_ = nullptr;
    DiskAutopilotBlock* disk_ = nullptr;
};

}  // namespace tallowcrest
