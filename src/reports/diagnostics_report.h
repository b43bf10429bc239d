#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/locale.h"
#include "core/remote_records.h"
#include "core/settings.h"

namespace tallowcrest {

/// What one report tells. Views: all of it lives as long as the call that takes it. The OpenAI key
/// itself is deliberately none of it.
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

/// The state of the monitor at the last sample as one plain text, for the owner and for the
/// advisor, whose only source of facts it is. Before the first sample there is none to be had.
///
/// Lines are joined by single line feeds. The rows of a section without any are one empty line, or
/// the section's own words for that. Every text of the facts is shown as `reportText` has it: the
/// report has the lines that the facts call for and no other, and is valid UTF-8.
///
/// `redacted` hides exactly three things: in the local table pids and, behind their application
/// group, process names; the addresses of remote machines; and, likewise behind groups, the names
/// in their lists of processes. A name of no known group is its own group and stays. Any thread.
std::string diagnosticsReport(const DiagnosticsFacts& facts, bool redacted, const Locale& locale);

}  // namespace tallowcrest
