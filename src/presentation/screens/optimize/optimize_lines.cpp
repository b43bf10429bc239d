#include "presentation/screens/optimize/optimize_lines.h"

#include <algorithm>
#include <utility>

#include "actions/app_group.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/app_impact.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::optimize_lines {
namespace {

using dashboard_text::megabytes;
using dashboard_text::percentWithDecimal;
using dashboard_text::text;

}  // namespace

QString heading(std::string_view name) {
    const QString title = u"Selected Offender"_s;
    return name.empty() ? title : title + u": "_s + text(name);
}

QString sentence(const ProcessSample& process, bool isProtected) {
    // Concatenated, not formatted: a name may contain a placeholder.
    return text(process.displayName()) + u" is using "_s + percentWithDecimal(process.cpu) +
           u" CPU and "_s + megabytes(process.rssMB, 0) + u" memory. "_s +
           (isProtected ? u"It is protected from quit actions."_s
                        : u"Review before quitting; unsaved work may be lost if the "
                          "app does not exit cleanly."_s);
}

GroupCard groupCard(const std::optional<std::string>& group, std::span<const AppImpact> groups) {
    const QString noSummary = u"No group summary"_s;
    if (!group || group->empty()) {
        return {noSummary, {}};
    }
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&](const AppImpact& each) { return each.name == *group; });
    if (found == groups.end()) {
        return {text(*group), noSummary};
    }
    return {text(*group), u"%1 · %2 CPU"_s.arg(dashboard_text::processes(found->processCount),
                                               percentWithDecimal(found->totalCPU))};
}

QString risk(bool isProtected) {
    return isProtected ? u"Protected"_s : u"Manual"_s;
}

std::vector<ProcessSample> helperProcesses(const std::vector<ProcessSample>& processes,
                                           const std::vector<std::size_t>& impactOrder,
                                           std::string_view group) {
    std::vector<ProcessSample> members;
    for (const std::size_t index : impactOrder) {
        if (appGroupName(processes[index]) == group) {
            members.push_back(processes[index]);
        }
    }
    return members;
}

QuitButton quitProcess(std::string_view name, bool isProtected, bool isRunning) {
    if (name.empty()) {
        return {false, u"Select a process first"_s};
    }
    if (!isRunning) {
        return {false, text(name) + u" is not running any more"_s};
    }
    return isProtected ? QuitButton{false, text(name) + u" is protected from quit actions"_s}
                       : QuitButton{true, u"Asks whether to quit "_s + text(name)};
}

QuitButton quitApp(const std::optional<std::string>& group, bool isNeverQuit,
                   std::int64_t members) {
    if (!group) {
        return {false, u"Select an app group first"_s};
    }
    if (isNeverQuit) {
        return {false, text(*group) + u" is on the Never Quit list"_s};
    }
    if (members == 0) {
        return {false, text(*group) + u" has no process that may be quit"_s};
    }
    return {true, u"Asks whether to quit "_s + text(*group) + u", "_s +
                      dashboard_text::processes(members)};
}

Offender offender(const OffenderFacts& facts) {
    if (!facts.selectedPID) {
        return {heading({}),
                facts.snapshot ? u"Select an app or process to see why it matters."_s
                               : u"Sampling this Mac..."_s,
                std::nullopt, quitProcess({}, false, false), quitApp({}, false, 0)};
    }
    const SelectedTargetSummary& summary = facts.summary;
    const ProcessSample* row = facts.selectedRow;
    const std::optional<std::string>& group = facts.group;
    Target target{
        .groupCard =
            groupCard(group, facts.snapshot ? std::span<const AppImpact>(facts.snapshot->appImpacts)
                                            : std::span<const AppImpact>()),
        .risk = risk(summary.isProtected),
        .group = group,
        .isNeverQuit = group && facts.protectedAppNames.contains(*group),
        .helpers = group ? helperProcesses(facts.latestProcesses, facts.impactOrder, *group)
                         : std::vector<ProcessSample>(),
        // Another process may have the PID of the one that was selected.
        .selectedPID = row != nullptr ? facts.selectedPID : std::nullopt};
    const auto members = std::count_if(
        target.helpers.begin(), target.helpers.end(), [&facts](const ProcessSample& each) {
            return isSafeTarget(each, facts.protectedAppNames, facts.protection);
        });
    const bool isNeverQuit = target.isNeverQuit;
    return {heading(summary.title),
            row != nullptr ? sentence(*row, summary.isProtected) : text(summary.detail),
            std::move(target), quitProcess(summary.title, summary.isProtected, row != nullptr),
            quitApp(group, isNeverQuit, members)};
}

}  // namespace tallowcrest::optimize_lines
