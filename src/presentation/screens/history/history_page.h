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

/// What happened: the load of the session, what may act by itself, receipts to take along and the
/// activity log. Main thread.
class HistoryPage final : public Screen {
    Q_OBJECT

public:
    explicit HistoryPage(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;

private:
    /// The entry at the top of the view and where it stands, once the log has been scrolled into.
    struct ReadingPlace {
        ActivityEntry* entry;
        int y;
    };

    QWidget* makeTimeline();
    QWidget* makeAutomation();
    QWidget* makeReceipts();
    void refreshAll();
    void showAutomation();
    std::optional<ReadingPlace> readingPlace() const;
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
