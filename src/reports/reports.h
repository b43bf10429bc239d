#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "actions/desktop_actions.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/outcome.h"
#include "core/services.h"
#include "reports/diagnostics_report.h"
#include "reports/report_ports.h"

namespace tallowcrest {

/// The file name of an export, for example "Tallowcrest-Diagnostics-2026-11-20-154512.txt": with
/// the local time to the second, in a form that sorts and is the same in every locale. Without the
/// time when the date has no form, see `Locale::hasForm`. `utcOffsetSeconds` as `UTCOffset` returns
/// it. Pure; any thread.
std::string exportFileName(Date date, std::int64_t utcOffsetSeconds);

/// Writes a report into a file; the program does not end meanwhile. The outcome of
/// `ReportFolder::write`, or failed with "canceled", without writing, when the program is ending
/// already. Any thread.
Outcome writeReport(ReportFolder& folder, const std::filesystem::path& file,
                    const std::string& text, const Stop& stop);

/// The diagnostics report for the owner: on the clipboard, as a file, as a text. Main thread.
class Reports {
public:
    /// The present state; absent before the first sample.
    using ReadFacts = std::function<std::optional<DiagnosticsFacts>()>;

    /// The references must outlive the object.
    Reports(const Services& services, Pasteboard& pasteboard, ReadFacts readFacts,
            ReportPorts ports);
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    /// Absent before the first sample.
    std::optional<std::string> diagnosticsReport(bool redacted) const;

    /// Copies the full report to the clipboard. Ignored before the first sample.
    Outcome copyDiagnosticsReport();

    /// Writes the full report into a new file in the background, then shows the file and records
    /// the result. Before the first sample it is refused at once. `finished`, if given, gets the
    /// recorded result on a later turn.
    Outcome exportDiagnosticsReport(std::function<void(const Outcome&)> finished = {});

private:
    Outcome finishExport(const std::filesystem::path& file, const Outcome& written);

    Services services_;
    Pasteboard& pasteboard_;
    ReadFacts readFacts_;
    ReportPorts ports_;
    JobScope jobs_;
};

}  // namespace tallowcrest
