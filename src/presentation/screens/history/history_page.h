#pragma once

#include <optional>

#include "presentation/screens/screen.h"
#include "presentation/screens/summary_cards.h"

class QScrollArea;

namespace tallowcrest {

class ActivityEntry;
class ActivityLogCard;
class AutomationToggles;
class Card;
class StableLineGraph;
class SystemMonitor;

/// The load of the session, the automation switches, the report to copy or export, and the activity
/// log. Main thread.
class HistoryPage final : public Screen {
    Q_OBJECT

public:
    explicit HistoryPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;

private:
    /// The topmost visible entry of the log and its position in the view.
    struct ReadingPlace {
        ActivityEntry* entry;
        int y;
    };

    QWidget* makeTimeline();
    QWidget* makeAutomation();
    QWidget* makeReceipts();
    void refreshAll();
    void showAutomation();
    /// Absent while the top of the log has not been scrolled out of the view.
    std::optional<ReadingPlace> readingPlace() const;
    /// Scrolls so that the entry is at its former position, if it is still in the log.
    void keepReadingPlace(const ReadingPlace& place);
    int placeInView(const QWidget& widget) const;

    SystemMonitor& monitor_;
    QScrollArea* area_ = nullptr;
    Card* timeline_ = nullptr;
    StableLineGraph* graph_ = nullptr;
    std::optional<SummaryCards> session_;
    AutomationToggles* automation_ = nullptr;
    ActivityLogCard* log_ = nullptr;
};

}  // namespace tallowcrest
