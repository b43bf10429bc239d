#include "presentation/screens/overview/recent_activity_block.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/overview/activity_row.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int rowHeight = 24;
/// Enough for the words that stand in place of no rows.
constexpr int fewestRows = 3;

}  // namespace

RecentActivityBlock::RecentActivityBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::activityLog, u"overview.recent-activity"_s,
                    u"clock"_s, u"Recent Activity"_s) {
    list_ = new QWidget(body());
    auto* lines = new QVBoxLayout(list_);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    empty_ = new ElidedLabel(u"No actions or warnings have been logged yet."_s, &CrestFonts::body,
                             &CrestTheme::secondaryText, list_);
    empty_->setLines(1, 2);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setGround(&CrestTheme::cardBackground);
    empty_->setFixedHeight(fewestRows * rowHeight);
    lines->addWidget(empty_);
    for (std::size_t i = 0; i < shownEntries; ++i) {
        auto* row = new ActivityRow(list_);
        row->setFixedHeight(rowHeight);
        row->hide();
        lines->addWidget(row);
        rows_.push_back(row);
    }
    lines->addStretch(1);
    bodyLayout()->addWidget(list_);
    fitList();

    auto* open = makeButton(u"Open History"_s, u"clock.arrow.circlepath"_s,
                            u"overview.open-history"_s, u"Goes to History"_s, body());
    connect(open, &QPushButton::clicked, this,
            [this] { this->monitor().navigation().setSelectedRoute(AppRoute::history); });
    bodyLayout()->addWidget(open, 0, Qt::AlignLeft);
    bodyLayout()->addStretch(1);
}

void RecentActivityBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    std::vector<ActivityLine> lines = activityLines(monitor().log().activityLog(), shownEntries,
                                                    snapshot ? snapshot->sampledAt : Date{});
    if (snapshot) {
        room_.setNeeded(static_cast<int>(lines.size()), snapshot->sampledAt);
        fitList();
    }
    if (lines == lines_) {
        return;
    }
    lines_ = std::move(lines);
    fitList();
    empty_->setVisible(lines_.empty());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i < lines_.size()) {
            rows_[i]->setLine(lines_[i]);
        }
        rows_[i]->setVisible(i < lines_.size());
    }
}

void RecentActivityBlock::fitList() {
    const int height =
        std::max({fewestRows, room_.rows(), static_cast<int>(lines_.size())}) * rowHeight;
    if (list_->minimumHeight() != height) {
        list_->setFixedHeight(height);
    }
}

}  // namespace tallowcrest
