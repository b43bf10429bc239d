#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "actions/pasteboard.h"
#include "core/jobs/jobs.h"
#include "core/locale.h"
#include "core/outcome.h"
#include "core/services.h"
#include "reports/diagnostics_report.h"
#include "reports/report_folder.h"

namespace tallowcrest {

/// "Tallowcrest-Diagnostics-2026-11-20-154512.txt": the time on the wall, to the second, in a form
/// that sorts and belongs to no country. `utcOffsetSeconds` as `UTCOffset` tells it. Pure.
std::string exportFileName(Date date, std::int64_t utcOffsetSeconds);

/// The diagnostics report for the owner: on the clipboard, as a file, as a text. Main thread.
class Reports {
public:
    /// The references must outlive the object.
    struct Dependencies {
        Services services;
        Pasteboard& pasteboard;
        /// The present state. Absent before the first sample.
        std::function<std::optional<DiagnosticsFacts>()> facts;
        UTCOffset utcOffset;                   ///< never absent
        std::shared_ptr<ReportFolder> folder;  ///< never null
    };

    explicit Reports(Dependencies dependencies);
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    /// Absent before the first sample.
    std::optional<std::string> diagnosticsReport(bool redacted) const;

    /// Before the first sample nothing happens, not even a message.
    Outcome copyDiagnosticsReport();

    /// Writes the report into a file and shows it, in the background: a disk may take its time.
    /// What became of it is recorded on a later turn, or at once before the first sample. After a
    /// failure `whenFailed` is called, if there is one.
    Outcome exportDiagnosticsReport(std::function<void()> whenFailed = {});

private:
    void finishExport(const std::filesystem::path& file, const std::optional<std::string>& problem,
                      const std::function<void()>& whenFailed);

    Dependencies with_;
    JobScope jobs_;
};

}  // namespace tallowcrest
