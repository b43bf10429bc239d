#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "actions/pasteboard.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/locale.h"
#include "reports/diagnostics_report.h"
#include "reports/report_folder.h"

namespace tallowcrest {

/// "Tallowcrest-Diagnostics-2026-11-20-154512.txt": the time on the wall, to the second, in a form
/// that sorts and belongs to no country. `utcOffsetSeconds` as `UTCOffset` tells it. Pure.
std::string exportFileName(Date date, std::int64_t utcOffsetSeconds);

/// The diagnostics report for the owner: on the clipboard, as a file, as a text. Main thread.
class Reports {
public:
    /// What the reports need; the references must outlive them.
    struct Surroundings {
        ActivityLog& log;
        Pasteboard& pasteboard;
        const Clock& clock;
        const Locale& locale;
        /// The present state. Absent before the first sample.
        std::function<std::optional<DiagnosticsFacts>()> facts;
        /// By how many seconds the clock on the wall is ahead of UTC.
        std::function<std::int64_t(Date)> utcOffset;
        std::shared_ptr<ReportFolder> folder;  ///< null where nothing can be exported
    };

    explicit Reports(Surroundings surroundings);

    /// Absent before the first sample.
    std::optional<std::string> diagnosticsReport(bool redacted) const;

    /// Before the first sample nothing happens, not even a message.
    void copyDiagnosticsReport();

    /// Whether a file was written. What became of it is recorded in either case.
    bool exportDiagnosticsReport();

private:
    Surroundings with_;
};

}  // namespace tallowcrest
