#include "presentation/overview/recent_activity_block.h"

#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/controls.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/overview/activity_row.h"

namespace tallowcrest {
namespace {

constexpr int rowHeight = 24;

}  // namespace

RecentActivityBlock::RecentActivityBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::activityLog,
                    QStringLiteral("overview.recent-activity"), QStringLiteral("clock"),
                    QStringLiteral("Recent Activity")) {
    auto* list = new QWidget(body());
    // Room for all of them from the start: entries come while one reads.
    list->setFixedHeight(static_cast<int>(shownEntries) * rowHeight);
    auto* lines = new QVBoxLayout(list);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    empty_ = new ElidedLabel(QStringLiteral("No actions or warnings have been logged yet."),
                             &CrestFonts::body, &CrestTheme::secondaryText, list);
    empty_->setLines(1, 2);
    empty_->setGround(&CrestTheme::cardBackground);
    lines->addWidget(empty_);
    for (std::size_t i = 0; i < shownEntries; ++i) {
        auto* row = new ActivityRow(list);
        row->setFixedHeight(rowHeight);
        row->hide();
        lines->addWidget(row);
        rows_.push_back(row);
    }
    lines->addStretch(1);
    bodyLayout()->addWidget(list);

    auto* open = makeButton(
        QStringLiteral("Open History"), QStringLiteral("clock.arrow.circlepath"),
        QStringLiteral("overview.open-history"), QStringLiteral("Goes to History"), body());
    connect(open, &QPushButton::clicked, this,
            [this] { this->monitor().navigation().setSelectedRoute(AppRoute::history); });
    bodyLayout()->addWidget(open, 0, Qt::AlignLeft);
    bodyLayout()->addStretch(1);
}

void RecentActivityBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    std::vector<ActivityLine> lines = activityLines(monitor().log().activityLog(), shownEntries,
                                                    snapshot ? snapshot->sampledAt : Date{});
    if (lines == lines_) {
        return;
    }
    lines_ = std::move(lines);
    empty_->setVisible(lines_.empty());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i < lines_.size()) {
            rows_[i]->setLine(lines_[i]);
        }
        rows_[i]->setVisible(i < lines_.size());
    }
}

}  // namespace tallowcrest
