#pragma once

#include <optional>
#include <vector>

#include "presentation/screens/overview/overview_lines.h"
#include "presentation/screens/shared/overview_block.h"
#include "presentation/widgets/reserved_rows.h"
#include "presentation/words/session_lines.h"

namespace tallowcrest {

class ActivityRow;

/// The newest entries of the activity log. Main thread.
class RecentActivityBlock final : public OverviewBlock {
    Q_OBJECT

public:
    static constexpr std::size_t shownEntries = 5;

    RecentActivityBlock();

    /// `events` come newest first; `sampledAt` is absent before the first sample.
    void show(const std::vector<ActivityEvent>& events, std::optional<Date> sampledAt);

signals:
    /// The owner asked to open History.
    void historyWanted();

private:
    void fitList();

    QWidget* list_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    std::vector<ActivityRow*> rows_;
    std::vector<ActivityLine> lines_;
    ReservedRows room_;
};

}  // namespace tallowcrest
