#include "presentation/screens/overview/session_blocks.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace tallowcrest {

using dashboard_text::text;

SessionSummaryBlock::SessionSummaryBlock()
    : OverviewBlock(DashboardSection::dailySummary, u"overview.session-summary"_s,
                    u"checklist.checked"_s, text(title(DashboardSection::dailySummary))),
      cards_(u"overview.summary"_s, sessionSummaryCards, body()) {
    cards_.setFrameless();
    bodyLayout()->addWidget(cards_.widget());
}

void SessionSummaryBlock::show(const std::vector<ActivityEvent>& activityLog,
                               const std::vector<SessionInsight>& insights,
                               const ProtectedAppNames& protectedAppNames) {
    if (!isCollapsed()) {
        cards_.show(sessionSummary(activityLog, insights, protectedAppNames));
    }
}

SessionInsightsBlock::SessionInsightsBlock()
    : OverviewBlock(DashboardSection::sessionInsights, u"overview.session-insights"_s,
                    u"chart.xyaxis.line"_s, text(title(DashboardSection::sessionInsights))),
      cards_(u"overview.insight"_s, mostSessionInsights, body()) {
    cards_.setFrameless();
    bodyLayout()->addWidget(cards_.widget());
}

void SessionInsightsBlock::show(const std::vector<SessionInsight>& insights, Date now) {
    if (!isCollapsed()) {
        cards_.show(sessionInsightCards(insights, now));
    }
}

}  // namespace tallowcrest
