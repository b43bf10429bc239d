#include "presentation/screens/overview/session_insights_block.h"

#include <utility>

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

using dashboard_text::text;

namespace {

/// As many as one sample can give.
constexpr std::size_t mostInsights = 5;

}  // namespace

SessionInsightsBlock::SessionInsightsBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::sessionInsights, u"overview.session-insights"_s,
                    u"chart.xyaxis.line"_s, text(title(DashboardSection::sessionInsights)),
                    Frame::none),
      cards_(u"overview.insight"_s, mostInsights, body()) {
    bodyLayout()->addWidget(cards_.widget());
}

void SessionInsightsBlock::showContent() {
    std::vector<SummaryTexts> texts;
    for (const SessionInsight& insight : monitor().sample().sessionInsights()) {
        texts.push_back({text(insight.title), text(insight.value), text(insight.detail)});
    }
    if (texts.empty()) {
        texts.push_back({u"Session"_s, u"Starting"_s,
                         u"Tallowcrest is collecting enough samples to identify patterns."_s});
    }
    cards_.show(std::move(texts));
}

}  // namespace tallowcrest
