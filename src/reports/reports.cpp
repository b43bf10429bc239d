#include "reports/reports.h"

#include <cmath>
#include <ctime>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "core/activity_log.h"

namespace tallowcrest {

std::string exportFileName(Date date, std::int64_t utcOffsetSeconds) {
    if (!Locale::hasForm(date)) {
        return "Tallowcrest-Diagnostics.txt";
    }
    const auto seconds = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    return fmt::format("Tallowcrest-Diagnostics-{:%Y-%m-%d-%H%M%S}.txt",
                       fmt::gmtime(seconds + utcOffsetSeconds));
}

Reports::Reports(Dependencies dependencies)
    : with_(std::move(dependencies)), jobs_(with_.services.jobs) {}

std::optional<std::string> Reports::diagnosticsReport(bool redacted) const {
    const auto facts = with_.facts();
    return facts ? std::optional(
                       tallowcrest::diagnosticsReport(*facts, redacted, with_.services.locale))
                 : std::nullopt;
}

Outcome Reports::copyDiagnosticsReport() {
    const auto report = diagnosticsReport(false);
    return report ? with_.pasteboard.copyToPasteboard(
                        *report, "Copied a performance report to the clipboard.")
                  : Outcome::refused({});
}

Outcome Reports::exportDiagnosticsReport(std::function<void()> whenFailed) {
    auto report = diagnosticsReport(false);
    if (!report) {
        if (whenFailed) {
            whenFailed();
        }
        return with_.services.log.record(
            Outcome::refused("No diagnostic sample is available yet."));
    }
    const Date now = with_.services.clock.now();
    const std::string name = exportFileName(now, Locale::hasForm(now) ? with_.utcOffset(now) : 0);
    const std::filesystem::path file = with_.folder->place() / name;
    jobs_.run(
        Lane::reports,
        [folder = with_.folder, file, report = *std::move(report)](const Stop& stop) {
            const auto change = stop.beginChange();
            return change ? folder->write(file, report) : std::optional<std::string>("canceled");
        },
        [this, file,
         whenFailed = std::move(whenFailed)](const std::optional<std::string>& problem) {
            finishExport(file, problem, whenFailed);
        });
    return Outcome::asked();
}

void Reports::finishExport(const std::filesystem::path& file,
                           const std::optional<std::string>& problem,
                           const std::function<void()>& whenFailed) {
    if (!problem) {
        with_.folder->reveal(file);
        with_.services.log.recordMessage(
            fmt::format("Exported diagnostics to {}.", file.filename().string()));
        return;
    }
    with_.services.log.recordMessage("Could not export diagnostics: " + *problem);
    if (whenFailed) {
        whenFailed();
    }
}

}  // namespace tallowcrest
