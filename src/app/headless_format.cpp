#include "app/headless_format.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string_view>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "app/console.h"
#include "app/json_line.h"
#include "core/locale.h"

namespace tallowcrest {
namespace {

using json = nlohmann::ordered_json;

constexpr std::size_t groupsShown = 5;
constexpr std::size_t nameColumns = 28;

std::string nameColumn(std::string_view name) {
    return printableColumn(name, nameColumns);
}

std::string localTime(Date date) {
    if (!Locale::hasForm(date)) {
        return std::string(Locale::unknownDate);
    }
    const auto seconds = static_cast<std::time_t>(date.unixSeconds());
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", parts);
}

/// Shown when the total is 0, which means that nothing could be read.
constexpr std::string_view unknownFigures = "unknown";

std::string memoryFigures(const MemorySnapshot& memory) {
    return memory.totalGB == 0.0 ? std::string(unknownFigures)
                                 : fmt::format("{:.0f}%  {:.1f} of {:.1f} GB used", memory.pressure,
                                               memory.usedGB, memory.totalGB);
}

std::string diskFigures(const DiskSnapshot& disk) {
    return disk.totalGB == 0.0 ? std::string(unknownFigures)
                               : fmt::format("{:.1f} of {:.1f} GB free", disk.freeGB, disk.totalGB);
}

template <class Value>
json optionalJSON(const std::optional<Value>& value) {
    return value ? json(*value) : json(nullptr);
}

json memoryJSON(const MemorySnapshot& memory) {
    return {{"totalGB", memory.totalGB},
            {"usedGB", memory.usedGB},
            {"freeGB", memory.freeGB},
            {"wiredGB", memory.wiredGB},
            {"compressedGB", memory.compressedGB},
            {"pressure", memory.pressure}};
}

json processJSON(const ProcessSample& process) {
    return {{"pid", process.pid},
            {"cpu", process.cpu},
            {"memoryPercent", process.memoryPercent},
            {"rssMB", process.rssMB},
            {"command", process.command},
            {"arguments", process.arguments}};
}

template <class Group>
json groupJSON(const Group& group) {
    return {{"name", group.name},
            {"processCount", group.processCount},
            {"totalCPU", group.totalCPU},
            {"totalMemoryMB", group.totalMemoryMB},
            {"topPID", optionalJSON(group.topPID)},
            {"protectedCount", group.protectedCount}};
}

json recommendationJSON(const Recommendation& recommendation) {
    return {{"id", recommendation.id.text()},
            {"title", recommendation.title},
            {"detail", recommendation.detail},
            {"severity", title(recommendation.severity)},
            {"relatedPID", optionalJSON(recommendation.relatedPID)}};
}

json remoteProcessJSON(const RemoteProcess& process) {
    return {{"pid", process.pid},
            {"cpu", process.cpu},
            {"rssMB", process.rssMB},
            {"command", process.command}};
}

/// The first groups, below the names of their columns.
template <class Group>
std::string groupRows(const std::vector<Group>& groups) {
    std::string rows = fmt::format("  {:<{}} {:>8} {:>10} {:>10}\n", "App", nameColumns, "CPU",
                                   "Memory", "Processes");
    const std::size_t shown = std::min(groupsShown, groups.size());
    for (std::size_t i = 0; i < shown; ++i) {
        const Group& group = groups[i];
        rows += fmt::format("  {} {:>7.1f}% {:>7.0f} MB {:>10}\n", nameColumn(group.name),
                            group.totalCPU, group.totalMemoryMB, group.processCount);
    }
    return rows;
}

template <class Values, class Convert>
json arrayOf(const Values& values, Convert convert) {
    json result = json::array();
    for (const auto& value : values) {
        result.push_back(convert(value));
    }
    return result;
}

}  // namespace

std::string sampleBlock(const SystemSnapshot& snapshot,
                        const std::vector<Recommendation>& recommendations) {
    std::string block = fmt::format("{}  CPU {:.0f}%  Memory {}  Disk {}\n",
                                    localTime(snapshot.sampledAt), snapshot.cpuPercent,
                                    memoryFigures(snapshot.memory), diskFigures(snapshot.disk));
    block += snapshot.appImpacts.empty() ? "  Sampling apps…\n" : groupRows(snapshot.appImpacts);
    for (const Recommendation& recommendation : recommendations) {
        block += fmt::format("  [{}] {}\n      {}\n", title(recommendation.severity),
                             printableText(recommendation.title).text,
                             printableText(recommendation.detail).text);
    }
    block += '\n';
    return block;
}

std::string sampleJSON(const SystemSnapshot& snapshot,
                       const std::vector<Recommendation>& recommendations) {
    const json object = {
        {"memory", memoryJSON(snapshot.memory)},
        {"disk", {{"totalGB", snapshot.disk.totalGB}, {"freeGB", snapshot.disk.freeGB}}},
        {"cpuPercent", snapshot.cpuPercent},
        {"topProcesses", arrayOf(snapshot.topProcesses, processJSON)},
        {"appImpacts", arrayOf(snapshot.appImpacts, groupJSON<AppImpact>)},
        {"pressureText", snapshot.pressureText},
        {"sampledAt", snapshot.sampledAt.secondsSinceReference},
        {"recommendations", arrayOf(recommendations, recommendationJSON)},
    };
    return jsonLine(object);
}

std::string remoteBlock(const RemoteHealth& machine) {
    std::string block = printableText(machine.hostName).text;
    if (!block.empty()) {
        block += "  ";
    }
    block += fmt::format("{}  {}", printableText(machine.address).text, title(machine.status));
    if (machine.cpuPercent) {
        block += fmt::format("  CPU {:.0f}%", *machine.cpuPercent);
    }
    if (machine.memoryPercent) {
        block += fmt::format("  Memory {:.0f}%", *machine.memoryPercent);
    }
    if (machine.osVersion) {
        block += fmt::format("  System {}", printableText(*machine.osVersion).text);
    }
    block += '\n';
    if (!machine.appImpacts.empty()) {
        block += groupRows(machine.appImpacts);
    }
    // Of a machine that did not answer, the recommendation is the hint once more.
    block += fmt::format(
        "  {}\n\n",
        printableText(machine.online ? machine.recommendation : machine.setupHint).text);
    return block;
}

std::string remoteJSON(const RemoteHealth& machine) {
    return jsonLine({
        {"id", machine.id},
        {"hostName", machine.hostName},
        {"address", machine.address},
        {"online", machine.online},
        {"status", title(machine.status)},
        {"cpuPercent", optionalJSON(machine.cpuPercent)},
        {"memoryPercent", optionalJSON(machine.memoryPercent)},
        {"osVersion", optionalJSON(machine.osVersion)},
        {"topCPUProcess", optionalJSON(machine.topCPUProcess)},
        {"topMemoryProcess", optionalJSON(machine.topMemoryProcess)},
        {"topProcesses", arrayOf(machine.topProcesses, remoteProcessJSON)},
        {"appImpacts", arrayOf(machine.appImpacts, groupJSON<RemoteAppImpact>)},
        {"recommendation", machine.recommendation},
        {"summary", machine.summary},
        {"setupHint", machine.setupHint},
        {"sampledAt", machine.sampledAt.secondsSinceReference},
        {"isLinux", machine.isLinux},
    });
}

std::string answerBlock(const Answer& answer) {
    std::string block;
    std::string_view rest = answer.text;
    for (;;) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        block += printableText(rest.substr(0, end)).text + '\n';
        if (end == rest.size()) {
            break;
        }
        rest.remove_prefix(end + 1);
    }
    const SystemSnapshot& snapshot = answer.snapshot;
    block += fmt::format("\n  CPU {:.0f}%  Memory {}  Disk {}\n", snapshot.cpuPercent,
                         memoryFigures(snapshot.memory), diskFigures(snapshot.disk));
    block += fmt::format("  Warn at {:.0f}%  Disk is low at {:.0f} GB\n", answer.warningThreshold,
                         answer.diskMinimumFreeGB);
    if (!snapshot.topProcesses.empty()) {
        const ProcessSample& top = snapshot.topProcesses.front();
        block += fmt::format("  Top process  {} {:>7.1f}% {:>7.0f} MB\n",
                             nameColumn(top.displayName()), top.cpu, top.rssMB);
    }
    if (!snapshot.appImpacts.empty()) {
        const AppImpact& top = snapshot.appImpacts.front();
        block += fmt::format("  Top app      {} {:>7.1f}% {:>7.0f} MB\n", nameColumn(top.name),
                             top.totalCPU, top.totalMemoryMB);
    }
    return block;
}

std::string answerJSON(const Answer& answer) {
    const SystemSnapshot& snapshot = answer.snapshot;
    return jsonLine({
        {"question", optionalJSON(answer.question)},
        {"answer", answer.text},
        {"answeredBy", answer.isOfProvider ? "provider" : "device"},
        {"figures",
         {
             {"cpuPercent", snapshot.cpuPercent},
             {"memory", memoryJSON(snapshot.memory)},
             {"disk", {{"totalGB", snapshot.disk.totalGB}, {"freeGB", snapshot.disk.freeGB}}},
             {"warningThreshold", answer.warningThreshold},
             {"diskMinimumFreeGB", answer.diskMinimumFreeGB},
             {"topProcess", snapshot.topProcesses.empty()
                                ? json(nullptr)
                                : processJSON(snapshot.topProcesses.front())},
             {"topApp",
              snapshot.appImpacts.empty() ? json(nullptr) : groupJSON(snapshot.appImpacts.front())},
             {"sampledAt", snapshot.sampledAt.secondsSinceReference},
         }},
    });
}

}  // namespace tallowcrest
