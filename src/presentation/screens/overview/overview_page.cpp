#include "presentation/screens/overview/overview_page.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "presentation/screens/overview/disk_autopilot_block.h"
#include "presentation/screens/overview/gauges_block.h"
#include "presentation/screens/overview/recent_activity_block.h"
#include "presentation/screens/overview/recommendations_block.h"
#include "presentation/screens/overview/session_insights_block.h"
#include "presentation/screens/overview/session_summary_block.h"
#include "presentation/screens/overview/timeline_block.h"
#include "presentation/screens/overview/top_app_memory_block.h"
#include "presentation/screens/overview/top_offender_block.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/two_columns.h"

namespace tallowcrest {

OverviewPage::OverviewPage(SystemMonitor& monitor, QWidget* parent) : Screen(parent) {
    auto* topAppMemory = new TopAppMemoryBlock(monitor);
    auto* diskAutopilot = new DiskAutopilotBlock(monitor);
    auto* topOffender = new TopOffenderBlock(monitor);
    auto* recentActivity = new RecentActivityBlock(monitor);
    auto* columns = new TwoColumns;
    columns->setColumns({topAppMemory}, {diskAutopilot, topOffender, recentActivity});
    blocks_ = {
        // First, because who looks only at the top of the page is to know what needs attention.
        new RecommendationsBlock(monitor),
        new GaugesBlock(monitor),
        new TimelineBlock(monitor),
        topAppMemory,
        diskAutopilot,
        topOffender,
        recentActivity,
        new SessionSummaryBlock(monitor),
        new SessionInsightsBlock(monitor),
    };
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    for (OverviewBlock* block : blocks_) {
        if (block->parentWidget() == nullptr) {
            layout->addWidget(block);
        } else if (block == topAppMemory) {
            layout->addWidget(columns);
        }
    }
    layout->addStretch(1);

    scrollOnPage(content, *this);
}

void OverviewPage::refresh() {
    for (OverviewBlock* block : blocks_) {
        block->refresh();
    }
}

}  // namespace tallowcrest
