#include "reports/reports.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace tallowcrest {

std::string exportFileName(Date date, std::int64_t utcOffsetSeconds) {
    using namespace std::chrono;
    if (!Locale::hasForm(date)) {
        return "Tallowcrest-Diagnostics.txt";
    }
    const sys_seconds wall{
        seconds(static_cast<std::int64_t>(std::floor(date.unixSeconds())) + utcOffsetSeconds)};
    const auto day = floor<days>(wall);
    const year_month_day calendar{day};
    const hh_mm_ss time{wall - day};
    return fmt::format("Tallowcrest-Diagnostics-{:04}-{:02}-{:02}-{:02}{:02}{:02}.txt",
                       static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                       static_cast<unsigned>(calendar.day()), time.hours().count(),
                       time.minutes().count(), time.seconds().count());
}

Reports::Reports(Surroundings surroundings) : with_(std::move(surroundings)) {}

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

bool Reports::exportDiagnosticsReport() {
    const auto report = diagnosticsReport(false);
    if (!report) {
        with_.log.recordMessage("No diagnostic sample is available yet.");
        return false;
    }
    const Date now = with_.clock.now();
    const std::string name = exportFileName(now, Locale::hasForm(now) ? with_.utcOffset(now) : 0);
    const auto problem = with_.folder != nullptr
                             ? with_.folder->write(name, *report)
                             : std::optional<std::string>(std::generic_category().message(ENOENT));
    if (problem) {
        with_.log.recordMessage("Could not export diagnostics: " + *problem);
        return false;
    }
    with_.folder->reveal(name);
    with_.log.recordMessage(fmt::format("Exported diagnostics to {}.", name));
    return true;
}

}  // namespace tallowcrest
