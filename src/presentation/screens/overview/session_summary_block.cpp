#include "presentation/screens/overview/session_summary_block.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

using dashboard_text::text;

SessionSummaryBlock::SessionSummaryBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::dailySummary, u"overview.session-summary"_s,
                    u"checklist.checked"_s, text(title(DashboardSection::dailySummary)),
                    Frame::none),
      cards_(u"overview.summary"_s, sessionSummaryCards, body()) {
    bodyLayout()->addWidget(cards_.widget());
}

void SessionSummaryBlock::showContent() {
    cards_.show(sessionSummary(monitor().log().activityLog(), monitor().sample().sessionInsights(),
                               monitor().settings().protectedAppNames));
}

}  // namespace tallowcrest
