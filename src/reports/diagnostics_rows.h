#pragma once

#include <string>
#include <string_view>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/locale.h"
#include "core/remote_records.h"

/// Each function gives one line of the diagnostics report, without the line feed, its columns
/// separated by tabs. Every text goes through `reportText`, so no name can add a column. Any
/// thread.
namespace tallowcrest {

/// `text` as part of a line in valid UTF-8. Line ends, tabs and the other characters that
/// `replacingControlCharacters` replaces become blanks, so that no text can look like a line or a
/// column of the report. Other text is unchanged.
std::string reportText(std::string_view text);

std::string formatAppRow(const AppImpact& app);

std::string formatInsightRow(const SessionInsight& insight);

/// `redacted` replaces the pid, and the process name by its application group.
std::string formatLocalProcessRow(const ProcessSample& row, bool redacted);

/// A part of a row: name, CPU and memory. `redacted` gives the application group as the name.
std::string formatRemoteProcessSummary(const RemoteProcess& process, bool redacted);

/// `redacted` hides the address wherever it occurs in the row and gives application groups in the
/// list of processes. The host name remains, as do the two top processes in the host's own words. A
/// missing figure is 0.
std::string formatRemoteRow(const RemoteHealth& health, bool redacted);

std::string formatTrustRow(const AITrustRecord& record);

std::string formatEventRow(const ActivityEvent& event, const Locale& locale);

}  // namespace tallowcrest
