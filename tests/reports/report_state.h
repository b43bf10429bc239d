#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/locale.h"
#include "reports/diagnostics_report.h"
#include "tests/support/lines_of.h"
#include "tests/support/process_row.h"

namespace tallowcrest {

/// A state of the monitor for a report. By default it has a sample and nothing else.
struct ReportState {
    SystemSnapshot snapshot;
    Settings settings;
    std::vector<SessionInsight> sessionInsights;
    std::vector<RemoteHealth> remoteHealth;
    bool openAIKeySaved = false;
    std::string aiInsight;
    std::vector<AIActionSuggestion> aiActions;
    std::map<std::string, AITrustRecord> aiTrustRecords;
    std::vector<ActivityEvent> activityLog;

    std::string report(bool redacted) const {
        return diagnosticsReport({.snapshot = snapshot,
                                  .settings = settings,
                                  .sessionInsights = sessionInsights,
                                  .remoteHealth = remoteHealth,
                                  .openAIKeySaved = openAIKeySaved,
                                  .aiInsight = aiInsight,
                                  .aiActions = aiActions,
                                  .aiTrustRecords = aiTrustRecords,
                                  .activityLog = activityLog},
                                 redacted, PlainLocale());
    }
};

}  // namespace tallowcrest
