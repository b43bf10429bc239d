#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/locale.h"
#include "core/remote_records.h"
#include "core/settings/settings.h"

namespace tallowcrest {

/// The content of one report. All views must stay valid during the call. The OpenAI key itself is
/// deliberately not included.
struct DiagnosticsFacts {
    const SystemSnapshot& snapshot;
    const Settings& settings;
    std::span<const SessionInsight> sessionInsights;
    std::span<const RemoteHealth> remoteHealth;
    bool openAIKeySaved = false;
    std::string_view aiInsight;
    std::span<const AIActionSuggestion> aiActions;
    const std::map<std::string, AITrustRecord>& aiTrustRecords;
    std::span<const ActivityEvent> activityLog;  ///< newest first; the report has the first 12
};

/// The state of the monitor at the last sample as plain text, for the owner and for the advisor,
/// which knows nothing else.
///
/// Lines are separated by single line feeds. A section without rows has one empty line or a fixed
/// text instead. Every text goes through `reportText`, so no text can add lines to the report. The
/// result is valid UTF-8.
///
/// `redacted` hides exactly three things: pids and process names in the local table, the addresses
/// of remote machines, and the process names of remote machines. Process names are replaced by
/// their application group; a name without a known group is its own group and remains. Any thread.
std::string diagnosticsReport(const DiagnosticsFacts& facts, bool redacted, const Locale& locale);

}  // namespace tallowcrest
