#pragma once

#include <optional>

#include "presentation/screens/shared/screen.h"
#include "presentation/screens/shared/summary_cards.h"

namespace tallowcrest {

class ActivityEntry;
class ActivityLogCard;
class AutomationToggles;
class Card;
class PageScrollArea;
class RemoteTimelineCard;
class StableLineGraph;
class SystemMonitor;
struct WindowState;

/// The load of the session and of the other machines, the automation switches, the report to copy
/// or export, and the activity log. Main thread.
class HistoryPage final : public Screen {
    Q_OBJECT

public:
    explicit HistoryPage(SystemMonitor& monitor, const WindowState& state,
                         QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

private:
    QWidget* makeTimeline();
    QWidget* makeAutomation();
    QWidget* makeReceipts();
    /// Null while the top of the log has not been scrolled out of the view.
    QWidget* topmostReadEntry() const;

    SystemMonitor& monitor_;
    const WindowState& state_;
    PageScrollArea* area_ = nullptr;
    Card* timeline_ = nullptr;
    StableLineGraph* graph_ = nullptr;
    RemoteTimelineCard* remoteTimeline_ = nullptr;
    std::optional<SummaryCards> session_;
    AutomationToggles* automation_ = nullptr;
    ActivityLogCard* log_ = nullptr;
};

}  // namespace tallowcrest
