#include "presentation/state/advisor_payload.h"

#include "advisor/advisor.h"
#include "advisor/advisor_prompts.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/words/plain_lines.h"
#include "reports/reports.h"

namespace tallowcrest {

QString advisorPayload(SystemMonitor& monitor) {
    const auto report =
        monitor.reports().diagnosticsReport(monitor.settings().aiRedactProcessDetails);
    return report ? plainLines(analysisPrompt(*report)) : QString();
}

QString chatPayload(SystemMonitor& monitor) {
    const auto payload = monitor.advisor().chat.aiPayload();
    return payload ? plainLines(*payload) : QString();
}

}  // namespace tallowcrest
