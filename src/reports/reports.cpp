#include "reports/reports.h"

#include <cmath>
#include <ctime>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "core/activity_log.h"
#include "core/clock.h"

namespace tallowcrest {

std::string exportFileName(Date date, std::int64_t utcOffsetSeconds) {
    if (!Locale::hasForm(date)) {
        return "Tallowcrest-Diagnostics.txt";
    }
    const auto seconds = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    return fmt::format("Tallowcrest-Diagnostics-{:%Y-%m-%d-%H%M%S}.txt",
                       fmt::gmtime(seconds + utcOffsetSeconds));
}

Outcome writeReport(ReportFolder& folder, const std::filesystem::path& file,
                    const std::string& text, const Stop& stop) {
    const auto change = stop.beginChange();
    return change ? folder.write(file, text) : Outcome::failed("canceled");
}

Reports::Reports(const Services& services, Pasteboard& pasteboard, ReadFacts readFacts,
                 ReportPorts ports)
    : services_(services),
      pasteboard_(pasteboard),
      readFacts_(std::move(readFacts)),
      ports_(std::move(ports)),
      jobs_(services.jobs) {}

std::optional<std::string> Reports::diagnosticsReport(bool redacted) const {
    const auto facts = readFacts_();
    return facts ? std::optional(tallowcrest::diagnosticsReport(*facts, redacted, services_.locale))
                 : std::nullopt;
}

Outcome Reports::copyDiagnosticsReport() {
    const auto report = diagnosticsReport(false);
    return report ? pasteboard_.copyToPasteboard(*report,
                                                 "Copied a performance report to the clipboard.")
                  : Outcome::ignored();
}

Outcome Reports::exportDiagnosticsReport(std::function<void(const Outcome&)> finished) {
    auto report = diagnosticsReport(false);
    if (!report) {
        return services_.log.record(Outcome::refused("No diagnostic sample is available yet."));
    }
    const Date now = services_.clock.now();
    const std::string name = exportFileName(now, Locale::hasForm(now) ? ports_.utcOffset(now) : 0);
    const std::filesystem::path file = ports_.folder->place() / name;
    jobs_.run(
        Lane::reports,
        [folder = ports_.folder, file, report = *std::move(report)](const Stop& stop) {
            return writeReport(*folder, file, report, stop);
        },
        [this, file, finished = std::move(finished)](const Outcome& written) {
            const Outcome outcome = finishExport(file, written);
            if (finished) {
                finished(outcome);
            }
        });
    return Outcome::asked();
}

Outcome Reports::finishExport(const std::filesystem::path& file, const Outcome& written) {
    if (!written.isAccepted()) {
        return services_.log.record(
            Outcome::failed("Could not export diagnostics: " + written.message));
    }
    ports_.folder->reveal(file);
    return services_.log.record(
        Outcome::done(fmt::format("Exported diagnostics to {}.", file.filename().string())));
}

}  // namespace tallowcrest
