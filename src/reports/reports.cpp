#include "reports/reports.h"

#include <cmath>
#include <ctime>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>

namespace tallowcrest {

std::string exportFileName(Date date, std::int64_t utcOffsetSeconds) {
    if (!Locale::hasForm(date)) {
        return "Tallowcrest-Diagnostics.txt";
    }
    const auto seconds = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    return fmt::format("Tallowcrest-Diagnostics-{:%Y-%m-%d-%H%M%S}.txt",
                       fmt::gmtime(seconds + utcOffsetSeconds));
}

Reports::Reports(Surroundings surroundings)
    : with_(std::move(surroundings)), self_(std::make_shared<Reports*>(this)) {}

std::optional<std::string> Reports::diagnosticsReport(bool redacted) const {
    const auto facts = with_.facts();
    return facts ? std::optional(tallowcrest::diagnosticsReport(*facts, redacted, with_.locale))
                 : std::nullopt;
}

void Reports::copyDiagnosticsReport() {
    if (const auto report = diagnosticsReport(false)) {
        with_.pasteboard.copyToPasteboard(*report, "Copied a performance report to the clipboard.");
    }
}

void Reports::exportDiagnosticsReport(std::function<void()> whenFailed) {
    auto report = diagnosticsReport(false);
    if (!report) {
        with_.log.recordMessage("No diagnostic sample is available yet.");
        if (whenFailed) {
            whenFailed();
        }
        return;
    }
    const Date now = with_.clock.now();
    const std::string name = exportFileName(now, Locale::hasForm(now) ? with_.utcOffset(now) : 0);
    with_.workQueue.post([&mainQueue = with_.mainQueue, folder = with_.folder,
                          self = std::weak_ptr(self_), file = with_.folder->place() / name,
                          report = *std::move(report), whenFailed = std::move(whenFailed)] {
        const std::optional<std::string> problem = folder->write(file, report);
        mainQueue.post([self, file, problem, whenFailed] {
            if (const auto reports = self.lock()) {
                (*reports)->finishExport(file, problem, whenFailed);
            }
        });
    });
}

void Reports::finishExport(const std::filesystem::path& file,
                           const std::optional<std::string>& problem,
                           const std::function<void()>& whenFailed) {
    if (!problem) {
        with_.folder->reveal(file);
        with_.log.recordMessage(
            fmt::format("Exported diagnostics to {}.", file.filename().string()));
        return;
    }
    with_.log.recordMessage("Could not export diagnostics: " + *problem);
    if (whenFailed) {
        whenFailed();
    }
}

}  // namespace tallowcrest
