#include "reports/diagnostics_rows.h"

#include <optional>
#include <vector>

#include <fmt/format.h>

#include "core/number_text.h"
#include "core/text.h"
#include "sampling/app_impact.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

constexpr std::string_view redactedText = "redacted";

std::string knownText(const std::optional<std::string>& text) {
    return reportText(text ? std::string_view(*text) : "unknown");
}

std::string processList(const std::vector<RemoteProcess>& processes, bool redacted) {
    if (processes.empty()) {
        return "unknown";
    }
    std::string list;
    for (const RemoteProcess& process : processes) {
        list.append(list.empty() ? "" : "; ");
        list.append(formatRemoteProcessSummary(process, redacted));
    }
    return list;
}

/// Texts of a row can contain the address too, for example in a hint on how to connect.
std::string withoutAddress(std::string text, std::string_view address) {
    // Without these characters it is the text for a missing address.
    if (address.find_first_of(".:") == std::string_view::npos) {
        return text;
    }
    for (std::size_t at = text.find(address); at != std::string::npos;
         at = text.find(address, at + redactedText.size())) {
        text.replace(at, address.size(), redactedText);
    }
    return text;
}

}  // namespace

std::string reportText(std::string_view text) {
    return replacingControlCharacters(text, " ");
}

std::string formatAppRow(const AppImpact& app) {
    return fmt::format("{}\t{}% CPU\t{} GB\t{} processes\t{} protected", reportText(app.name),
                       withOneDecimal(app.totalCPU),
                       withOneDecimal(app.totalMemoryMB / megabytesPerGigabyte), app.processCount,
                       app.protectedCount);
}

std::string formatInsightRow(const SessionInsight& insight) {
    return fmt::format("{}\t{}\t{}", reportText(insight.title), reportText(insight.value),
                       reportText(insight.detail));
}

std::string formatLocalProcessRow(const ProcessSample& row, bool redacted) {
    const std::string name = redacted ? appGroupName(row) : std::string(row.displayName());
    return fmt::format("{}\t{}% CPU\t{} MB\t{}",
                       redacted ? std::string(redactedText) : std::to_string(row.pid),
                       withOneDecimal(row.cpu), withoutDecimals(row.rssMB), reportText(name));
}

std::string formatRemoteProcessSummary(const RemoteProcess& process, bool redacted) {
    const std::string_view name = process.displayName();
    return fmt::format("{} {}%/{}MB", reportText(redacted ? normalizedAppName(name) : name),
                       withOneDecimal(process.cpu), withoutDecimals(process.rssMB));
}

std::string formatRemoteRow(const RemoteHealth& health, bool redacted) {
    const auto words = [&](const std::string& text) {
        return reportText(redacted ? withoutAddress(text, health.address) : text);
    };
    return fmt::format(
        "{}\t{}\t{}\t{} {}\tCPU {}%\tMemory {}%\tTop CPU {}\tTop Memory {}\tRecommendation {}\t"
        "Processes {}\t{}",
        reportText(health.hostName), reportText(redacted ? redactedText : health.address),
        title(health.status), health.isLinux ? "Linux" : "macOS", knownText(health.osVersion),
        roundedToInteger(health.cpuPercent.value_or(0.0)),
        roundedToInteger(health.memoryPercent.value_or(0.0)), knownText(health.topCPUProcess),
        knownText(health.topMemoryProcess), words(health.recommendation),
        processList(health.topProcesses, redacted), words(health.setupHint));
}

std::string formatTrustRow(const AITrustRecord& record) {
    return fmt::format("{}\ttrust {}%\tapproved {}\trun {}\tblocked {}",
                       reportText(record.actionType), trustPercent(record), record.approvedCount,
                       record.runCount, record.blockedCount);
}

std::string formatEventRow(const ActivityEvent& event, const Locale& locale) {
    return fmt::format("{}\t{}\t{}", locale.timeOfDay(event.date), reportText(event.title),
                       reportText(event.detail));
}

}  // namespace tallowcrest
