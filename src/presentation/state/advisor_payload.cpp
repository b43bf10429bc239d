#include "presentation/state/advisor_payload.h"

#include "advisor/advisor.h"
#include "advisor/advisor_prompts.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"
#include "reports/reports.h"

namespace tallowcrest {
namespace {

/// Tabs align the columns of a report.
QString shown(std::string_view payload) {
    return dashboard_text::lines(payload, u"\t");
}

}  // namespace

QString advisorPayload(SystemMonitor& monitor) {
    const auto report =
        monitor.reports().diagnosticsReport(monitor.settings().aiRedactProcessDetails);
    return report ? shown(analysisPrompt(*report)) : QString();
}

QString chatPayload(SystemMonitor& monitor) {
    const auto payload = monitor.advisor().chat.aiPayload();
    return payload ? shown(*payload) : QString();
}

}  // namespace tallowcrest
