#include "advisor/guidance.h"

#include <algorithm>
#include <initializer_list>

#include <fmt/format.h>

#include "actions/review_target.h"
#include "core/locale.h"
#include "core/number_text.h"
#include "core/settings/settings.h"
#include "core/text.h"
#include "reports/diagnostics_rows.h"

namespace tallowcrest {
namespace {

std::string firstProcessOr(const SystemSnapshot& snapshot, std::string_view whenNone) {
    return snapshot.topProcesses.empty() ? std::string(whenNone)
                                         : reportText(snapshot.topProcesses.front().displayName());
}

std::string firstGroupOr(const SystemSnapshot& snapshot, std::string_view whenNone) {
    return snapshot.appImpacts.empty() ? firstProcessOr(snapshot, whenNone)
                                       : reportText(snapshot.appImpacts.front().name);
}

std::string memorySentence(const GuidanceFacts& facts) {
    const double pressure = facts.snapshot.memory.pressure;
    if (facts.warningThreshold <= pressure) {
        return fmt::format("Memory pressure is {}%. Review {} before quitting anything.",
                           roundedToInteger(pressure),
                           firstGroupOr(facts.snapshot, "the top process"));
    }
    return fmt::format("Memory pressure is manageable at {}%.", roundedToInteger(pressure));
}

std::string cpuSentence(const GuidanceFacts& facts) {
    const double cpu = facts.snapshot.cpuPercent;
    if (facts.warningThreshold <= cpu) {
        return fmt::format("CPU load is high at {}%. Inspect {} in Processes.",
                           roundedToInteger(cpu),
                           firstProcessOr(facts.snapshot, "the top CPU process"));
    }
    return fmt::format("CPU load is below your warning threshold at {}%.", roundedToInteger(cpu));
}

std::string diskSentence(const GuidanceFacts& facts) {
    const double freeGB = facts.snapshot.disk.freeGB;
    if (freeGB < facts.diskMinimumFreeGB) {
        return fmt::format(
            "Only {} GB is free. Run Storage Analyzer and review large files for backup or "
            "removal.",
            facts.locale.decimal(freeGB, 1));
    }
    return fmt::format("Disk free space is above your {} GB safety threshold.",
                       cutToInteger(facts.diskMinimumFreeGB));
}

std::string memoryAnswer(const GuidanceFacts& facts) {
    const MemorySnapshot& memory = facts.snapshot.memory;
    return fmt::format(
        "Memory pressure is {}%, with {} GB used of {} GB. Review {} first. If it is doing useful "
        "work, leave it alone; otherwise use Optimize to inspect it before quitting anything.",
        roundedToInteger(memory.pressure), facts.locale.decimal(memory.usedGB, 1),
        facts.locale.decimal(memory.totalGB, 1),
        firstGroupOr(facts.snapshot, "the first item in Processes"));
}

std::string cpuAnswer(const GuidanceFacts& facts) {
    const SystemSnapshot& snapshot = facts.snapshot;
    return fmt::format(
        "Overall CPU load is {}%. {} Open Processes to compare CPU and memory impact before taking "
        "action.",
        roundedToInteger(snapshot.cpuPercent),
        snapshot.topProcesses.empty()
            ? "No leading process has been sampled yet."
            : leadingProcessSentence(snapshot.topProcesses.front(), facts.locale));
}

std::string diskAnswer(const GuidanceFacts& facts) {
    return fmt::format(
        "This Mac has {} GB free. Use Storage Analyzer to inspect a folder you choose, then back "
        "up important large files before moving reviewed items to Trash.",
        facts.locale.decimal(facts.snapshot.disk.freeGB, 1));
}

std::string targetAnswer(const SelectedTargetSummary* target) {
    if (target == nullptr) {
        return "No operation target is selected. Open Processes and choose a row to review it "
               "safely in Optimize.";
    }
    return fmt::format(
        "The selected target is {}: {}. Open Optimize to review its impact and protections. "
        "Tallowcrest will not quit it automatically.",
        reportText(target->title), reportText(target->detail));
}

std::string generalAnswer(const GuidanceFacts& facts) {
    const SystemSnapshot& snapshot = facts.snapshot;
    return fmt::format(
        "CPU is {}%, memory pressure is {}%, and free disk space is {} GB. Start with whichever "
        "signal exceeds its threshold, then review the suggested target before changing anything. "
        "Connect paid AI for a more detailed conversational answer.",
        roundedToInteger(snapshot.cpuPercent), roundedToInteger(snapshot.memory.pressure),
        facts.locale.decimal(snapshot.disk.freeGB, 1));
}

}  // namespace

GuidanceFacts guidanceFacts(const SystemSnapshot& snapshot, const Settings& settings,
                            const Locale& locale) {
    return {.snapshot = snapshot,
            .warningThreshold = settings.warningThreshold,
            .diskMinimumFreeGB = settings.diskMinimumFreeGB,
            .locale = locale};
}

std::string onDeviceAnalysis(const GuidanceFacts& facts) {
    return fmt::format("{} {} {}", memorySentence(facts), cpuSentence(facts), diskSentence(facts));
}

std::string onDeviceChatAnswer(std::string_view question, const GuidanceFacts& facts,
                               const SelectedTargetSummary* target) {
    const std::string lowered = loweredASCII(question);
    const auto mentions = [&lowered](std::initializer_list<std::string_view> words) {
        return std::ranges::any_of(words, [&lowered](std::string_view word) {
            return lowered.find(word) != std::string::npos;
        });
    };
    if (mentions({"memory"})) {
        return memoryAnswer(facts);
    }
    if (mentions({"cpu", "slow", "slowing"})) {
        return cpuAnswer(facts);
    }
    if (mentions({"disk", "storage", "space"})) {
        return diskAnswer(facts);
    }
    if (mentions({"selected", "target"})) {
        return targetAnswer(target);
    }
    return generalAnswer(facts);
}

std::string leadingProcessSentence(const ProcessSample& process, const Locale& locale) {
    return fmt::format("{} is currently the leading sampled process at {}% CPU.",
                       reportText(process.displayName()), locale.decimal(process.cpu, 1));
}

}  // namespace tallowcrest
