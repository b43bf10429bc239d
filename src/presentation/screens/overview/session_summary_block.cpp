#include "presentation/screens/overview/session_summary_block.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

using dashboard_text::text;

SessionSummaryBlock::SessionSummaryBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::dailySummary,
                    QStringLiteral("overview.session-summary"), QStringLiteral("checklist.checked"),
                    text(title(DashboardSection::dailySummary)), Frame::none),
      cards_(QStringLiteral("overview.summary"), sessionSummaryCards, body()) {
    bodyLayout()->addWidget(cards_.widget());
}

void SessionSummaryBlock::showContent() {
    cards_.show(sessionSummary(monitor().log().activityLog(), monitor().sample().sessionInsights(),
                               monitor().settings().protectedAppNames));
}

}  // namespace tallowcrest
