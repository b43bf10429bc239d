#pragma once

#include <string>
#include <string_view>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/locale.h"
#include "core/remote_records.h"

/// One line of the diagnostics report each, without its line feed, the columns apart by tabs. Every
/// text of a row goes through `reportText`, so a row has its columns and no more, whatever a
/// process or a remote machine is called. Any thread.
namespace tallowcrest {

/// `text` as it stands in a report: one piece of one line in valid UTF-8. Line ends, tabs and all
/// else that `replacingControlCharacters` names become blanks, so that no text can pass for a line
/// or a column of the report's own. Other texts stand to the letter.
std::string reportText(std::string_view text);

std::string formatAppRow(const AppImpact& app);

std::string formatInsightRow(const SessionInsight& insight);

/// `redacted` has neither the pid nor the process's name but its application group.
std::string formatLocalProcessRow(const ProcessSample& row, bool redacted);

/// Part of a row: name, CPU and memory. `redacted` names the application group instead.
std::string formatRemoteProcessSummary(const RemoteProcess& process, bool redacted);

/// `redacted` has no address, wherever the row has it, and application groups in the list of
/// processes. The host's name stays, and so do the two top processes, which are told as the host
/// told them. A missing figure is 0.
std::string formatRemoteRow(const RemoteHealth& health, bool redacted);

std::string formatTrustRow(const AITrustRecord& record);

std::string formatEventRow(const ActivityEvent& event, const Locale& locale);

}  // namespace tallowcrest
