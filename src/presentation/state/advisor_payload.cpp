#include "presentation/state/advisor_payload.h"

#include <cstddef>
#include <limits>

#include "advisor/advisor_prompts.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/words/plain_lines.h"
#include "reports/reports.h"

namespace tallowcrest {

QString advisorPayload(SystemMonitor& monitor) {
    const auto report =
        monitor.reports().diagnosticsReport(monitor.settings().aiRedactProcessDetails);
    return report ? plainLines(analysisPrompt(*report), std::numeric_limits<std::size_t>::max(),
                               std::numeric_limits<qsizetype>::max())
                  : QString();
}

}  // namespace tallowcrest
