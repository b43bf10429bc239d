#include "reports/diagnostics_report.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <fmt/format.h>

#include "core/number_text.h"
#include "reports/diagnostics_rows.h"

namespace tallowcrest {
namespace {

constexpr std::size_t maximumEvents = 12;

using Lines = std::vector<std::string>;

std::string_view onOrOff(bool value) {
    return value ? "On" : "Off";
}

/// One line for each of `items`, or the one line `whenEmpty`.
template <class Items, class Row>
void addRows(Lines& lines, const Items& items, std::string_view whenEmpty, Row row) {
    for (const auto& item : items) {
        lines.push_back(row(item));
    }
    if (items.empty()) {
        lines.emplace_back(whenEmpty);
    }
}

/// Adds a blank line and the heading.
void beginSection(Lines& lines, std::string_view heading) {
    lines.emplace_back();
    lines.emplace_back(heading);
}

void addMachine(Lines& lines, const DiagnosticsFacts& facts, const Locale& locale) {
    const SystemSnapshot& snapshot = facts.snapshot;
    const std::string& sshUsername = facts.settings.sshUsername;
    lines.push_back("Tallowcrest report - " + locale.dateAndTime(snapshot.sampledAt));
    lines.push_back(fmt::format("CPU: {}%", withoutDecimals(snapshot.cpuPercent)));
    lines.push_back(fmt::format("Memory: {} GB / {} GB", withOneDecimal(snapshot.memory.usedGB),
                                withOneDecimal(snapshot.memory.totalGB)));
    lines.push_back(fmt::format("Pressure: {}%", withoutDecimals(snapshot.memory.pressure)));
    lines.push_back(fmt::format("Disk: {} GB free / {} GB", withOneDecimal(snapshot.disk.freeGB),
                                withOneDecimal(snapshot.disk.totalGB)));
    lines.push_back(
        fmt::format("Warning threshold: {}%", cutToInteger(facts.settings.warningThreshold)));
    lines.push_back("SSH user: " + (sshUsername.empty() ? "(default)" : reportText(sshUsername)));
}

void addSample(Lines& lines, const DiagnosticsFacts& facts, bool redacted) {
    beginSection(lines, "App\tCPU\tMemory\tProcesses\tProtected");
    addRows(lines, facts.snapshot.appImpacts, "", formatAppRow);
    beginSection(lines, "Session Insights");
    addRows(lines, facts.sessionInsights, "", formatInsightRow);
    beginSection(lines, "PID\tCPU\tMemory\tProcess");
    addRows(lines, facts.snapshot.topProcesses, "",
            [redacted](const ProcessSample& row) { return formatLocalProcessRow(row, redacted); });
    beginSection(lines, "Remote Health");
    addRows(lines, facts.remoteHealth, "No remote scan results.",
            [redacted](const RemoteHealth& health) { return formatRemoteRow(health, redacted); });
}

void addRules(Lines& lines, const Settings& settings) {
    beginSection(lines, "Never Quit Apps");
    addRows(lines, settings.protectedAppNames, "None", reportText);
    beginSection(lines, "Auto Rules");
    lines.push_back(
        fmt::format("Auto-select top offender: {}", onOrOff(settings.autoSelectTopOffender)));
    lines.push_back(
        fmt::format("Auto-purge sustained memory: {}", onOrOff(settings.autoPurgeSustainedMemory)));
    lines.push_back(fmt::format("Auto-scan remote Macs: {}", onOrOff(settings.autoScanRemoteMacs)));
    lines.push_back(fmt::format(
        "Disk Autopilot: {} · act below {} GB · cache age {} days · max {} GB/run",
        onOrOff(settings.diskAutopilotEnabled), cutToInteger(settings.diskMinimumFreeGB),
        cutToInteger(settings.diskCleanupAgeDays), withOneDecimal(settings.diskMaxCleanupGB)));
}

std::string actionList(std::span<const AIActionSuggestion> actions) {
    std::string list;
    for (const AIActionSuggestion& action : actions) {
        list.append(list.empty() ? "" : "; ");
        list.append(reportText(action.type)).append(": ").append(reportText(action.title));
    }
    return list;
}

/// By the records' own action types, which can differ from the keys of a stored table.
std::vector<AITrustRecord> byActionType(const std::map<std::string, AITrustRecord>& records) {
    std::vector<AITrustRecord> sorted;
    for (const auto& [type, record] : records) {
        sorted.push_back(record);
    }
    std::stable_sort(
        sorted.begin(), sorted.end(),
        [](const AITrustRecord& a, const AITrustRecord& b) { return a.actionType < b.actionType; });
    return sorted;
}

void addAdvisor(Lines& lines, const DiagnosticsFacts& facts) {
    const Settings& settings = facts.settings;
    beginSection(lines, "AI Intelligence");
    lines.push_back(fmt::format("OpenAI key saved: {}", facts.openAIKeySaved ? "Yes" : "No"));
    lines.push_back("Model: " + reportText(settings.openAIModel));
    lines.push_back(fmt::format("AI safe actions: {}", onOrOff(settings.aiSafeActionsEnabled)));
    lines.push_back(fmt::format("AI autonomy mode: {}", title(settings.aiAutonomyMode)));
    lines.push_back("Last AI insight: " + reportText(facts.aiInsight));
    lines.push_back("Proposed AI actions: " + actionList(facts.aiActions));
    // No blank line before this heading: it belongs to the section above.
    lines.emplace_back("AI trust history");
    addRows(lines, byActionType(facts.aiTrustRecords), "No trust history.", formatTrustRow);
}

void addEvents(Lines& lines, std::span<const ActivityEvent> log, const Locale& locale) {
    beginSection(lines, "Recent Events");
    addRows(lines, log.first(std::min(log.size(), maximumEvents)), "",
            [&locale](const ActivityEvent& event) { return formatEventRow(event, locale); });
}

}  // namespace

std::string diagnosticsReport(const DiagnosticsFacts& facts, bool redacted, const Locale& locale) {
    Lines lines;
    addMachine(lines, facts, locale);
    addSample(lines, facts, redacted);
    addRules(lines, facts.settings);
    addAdvisor(lines, facts);
    addEvents(lines, facts.activityLog, locale);
    return fmt::format("{}", fmt::join(lines, "\n"));
}

}  // namespace tallowcrest
