#pragma once

#include <vector>

#include <QDate>

#include "core/uuid.h"
#include "presentation/widgets/card.h"

class QPushButton;
class QVBoxLayout;

namespace tallowcrest {

class ActivityEntry;
class SystemMonitor;

/// The whole activity log, newest first, and the button that empties it. An entry keeps its row as
/// long as it is in the log: what is new comes above it and nothing else changes. Main thread.
class ActivityLogCard final : public Card {
    Q_OBJECT

public:
    explicit ActivityLogCard(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

    /// Newest first.
    const std::vector<ActivityEntry*>& entries() const { return entries_; }

private:
    void matchEntries(const std::vector<UUID>& identifiers);

    SystemMonitor& monitor_;
    QPushButton* clear_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    QWidget* list_ = nullptr;
    QVBoxLayout* rows_ = nullptr;
    std::vector<ActivityEntry*> entries_;
    std::vector<UUID> shown_;  ///< one for each of `entries_`
    QDate shownDay_;           ///< of which times are told without a date
};

}  // namespace tallowcrest
