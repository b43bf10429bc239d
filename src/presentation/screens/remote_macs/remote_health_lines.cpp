#include "presentation/screens/remote_macs/remote_health_lines.h"

#include <algorithm>
#include <utility>

#include <QStringList>

#include "presentation/words/dashboard_text.h"
#include "remote/remote_advice.h"
#include "remote/remote_process.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::remote_health_lines {
namespace {

/// Of a name within an identifier.
constexpr qsizetype longestIdentifier = 64;

/// A text of the other machine or of the profile, of which no screen shows more.
QString text(std::string_view utf8) {
    constexpr qsizetype longest = 1000;
    return dashboard_text::shortText(utf8, longest);
}

QString separator() {
    return u" · "_s;
}

QString figure(const QString& name, const std::optional<double>& percent, const QString& absent) {
    return name + u' ' + (percent ? dashboard_text::percentText(*percent) : absent);
}

QString orUnknown(const std::optional<std::string>& value) {
    return value ? text(*value) : u"unknown"_s;
}

QString joined(QStringList parts, const QString& between) {
    parts.removeAll(QString());
    return parts.join(between);
}

// The other machine may report any figure, and each has its room.

QString cpuText(double percent) {
    constexpr double bound = 100'000;
    return dashboard_text::percentWithDecimal(std::clamp(percent, -bound, bound)) + u" CPU"_s;
}

double boundedMegabytes(double megabytes) {
    constexpr double bound = 1e8;
    return std::clamp(megabytes, -bound, bound);
}

}  // namespace

bool isCPUHigh(const RemoteHealth& machine) {
    return machine.cpuPercent && *machine.cpuPercent >= highRemoteLoad;
}

bool isMemoryHigh(const RemoteHealth& machine, const RemoteProfile& profile) {
    return machine.memoryPercent && *machine.memoryPercent >= profile.warningThreshold;
}

QString statusIcon(RemoteHealth::Status status) {
    return status == RemoteHealth::Status::reachable ? u"checkmark.circle"_s
                                                     : u"exclamationmark.triangle.fill"_s;
}

QString nowOffline() {
    return u"now offline"_s;
}

QString displayName(const RemoteHealth& machine, const RemoteProfile& profile) {
    for (const std::string* name : {&profile.nickname, &machine.hostName}) {
        if (!name->empty()) {
            return text(*name);
        }
    }
    return text(machine.address);
}

Head head(const RemoteHealthFacts& facts) {
    const RemoteHealth& machine = facts.machine;
    const QString name = displayName(machine, facts.profile);
    const QString host = text(machine.hostName);
    const QString shownHost = host == name ? QString() : host;
    const QString status = text(title(machine.status));
    const auto highIf = [](bool isHigh) { return isHigh ? u"High"_s : QString(); };
    const QString cpuWord = highIf(isCPUHigh(machine));
    const QString memoryWord = highIf(isMemoryHigh(machine, facts.profile));
    const QString sampled = dashboard_text::age(machine.sampledAt, facts.now);
    const QString offline = facts.isNowOffline ? nowOffline() : QString();
    const auto figures = [&machine](const QString& absent) {
        return std::pair(figure(u"CPU"_s, machine.cpuPercent, absent),
                         figure(u"Memory"_s, machine.memoryPercent, absent));
    };
    const auto [cpu, memory] = figures(dashboard_text::noFigure());
    const auto [spokenCPU, spokenMemory] = figures(u"unknown"_s);
    return {.name = name,
            .host = shownHost,
            .status = status,
            .statusIcon = statusIcon(machine.status),
            .isReachable = isReachable(machine),
            .cpu = cpu,
            .cpuWord = cpuWord,
            .memory = memory,
            .memoryWord = memoryWord,
            .age = sampled,
            .offline = offline,
            .spokenName = joined({name, shownHost, status}, u", "_s),
            .spokenFigures =
                joined({spokenCPU, cpuWord, spokenMemory, memoryWord, sampled, offline}, u", "_s)};
}

QString profileLine(const RemoteProfile& profile) {
    return u"Profile: "_s + joined({text(profile.nickname), text(profile.role),
                                    dashboard_text::warnAt(profile.warningThreshold)},
                                   separator());
}

QString systemLine(const RemoteHealth& machine) {
    const QString version = orUnknown(machine.osVersion);
    if (!machine.isLinux) {
        return u"macOS "_s + version;
    }
    return version.contains(u"Linux"_s) ? version : u"Linux "_s + version;
}

QString topCPULine(const RemoteHealth& machine) {
    return u"Top CPU: "_s + orUnknown(machine.topCPUProcess);
}

QString topMemoryLine(const RemoteHealth& machine) {
    return u"Top Memory: "_s + orUnknown(machine.topMemoryProcess);
}

QString recommendationLine(const RemoteHealth& machine) {
    return u"Recommendation: "_s + text(machine.recommendation);
}

QString setupHintLine(const RemoteHealth& machine) {
    return text(machine.setupHint);
}

QString resultLine(const RemoteHealthFacts& facts) {
    return facts.lastResult ? u"Last action: "_s + text(facts.lastResult->outcome.message) +
                                  separator() + dashboard_text::age(facts.lastResult->at, facts.now)
                            : QString();
}

std::vector<Row> processRows(const RemoteHealthFacts& facts) {
    std::vector<Row> rows;
    for (const RemoteProcess& process : facts.machine.topProcesses) {
        const QString name = text(process.displayName());
        const QString pid = QString::number(process.pid);
        const bool isProtected =
            isProtectedRemoteProcess(process, facts.neverQuit, facts.machine.isLinux);
        const bool isOfSystem = isProtectedRemoteProcess(process, {}, facts.machine.isLinux);
        rows.push_back({.key = std::to_string(process.pid) + ' ' + process.command,
                        .identifier = u"process-"_s + pid,
                        .name = name,
                        .note = joined({u"PID "_s + pid, isProtected ? u"Protected"_s : QString()},
                                       separator()),
                        .cpu = cpuText(process.cpu),
                        .memory = dashboard_text::megabytes(boundedMegabytes(process.rssMB), 0),
                        .toolTip = text(process.command),
                        .copyName = u"Copy %1, PID %2"_s.arg(name, pid),
                        .actionName = u"Quit %1, PID %2"_s.arg(name, pid),
                        .actionDescription =
                            isOfSystem    ? u"Protected: a part of its system"_s
                            : isProtected ? u"Protected: its app group is on the Never Quit list"_s
                                          : u"Asks whether to send TERM to this process"_s,
                        .isProtected = isProtected,
                        .hasAction = !isOfSystem});
    }
    return rows;
}

std::vector<Row> appRows(const RemoteHealthFacts& facts) {
    std::vector<Row> rows;
    for (const RemoteAppImpact& app : facts.machine.appImpacts) {
        const QString name = text(app.name);
        const bool isNeverQuit = facts.neverQuit.contains(app.name);
        rows.push_back({.key = app.name,
                        .identifier = u"app-"_s + name.left(longestIdentifier),
                        .name = name,
                        .note = dashboard_text::processes(app.processCount) + separator() +
                                dashboard_text::memoryText(boundedMegabytes(app.totalMemoryMB)),
                        .cpu = cpuText(app.totalCPU),
                        .memory = QString(),
                        .toolTip = QString(),
                        .copyName = u"Copy "_s + name,
                        .actionName = u"Never Quit "_s + name,
                        .actionDescription =
                            isNeverQuit ? u"Takes this app group off the Never Quit list"_s
                                        : u"Puts this app group on the Never Quit list, which "
                                          "protects it from quit actions"_s,
                        .isProtected = isNeverQuit});
    }
    return rows;
}

QString noRows(const RemoteHealth& machine) {
    return isReachable(machine) ? u"The last sample named no process."_s : QString();
}

std::span<const Tool> tools() {
    using enum RemoteOperation;
    static constexpr std::array all{
        Tool{copyPing, "Copy Ping", "copy-ping",
             "Puts a command on the clipboard that pings this machine over Tailscale"},
        Tool{copyPortTest, "Copy Port Test", "copy-port-test",
             "Puts a command on the clipboard that tests whether its SSH port is open"},
        Tool{copyTest, "Copy Test", "copy-test",
             "Puts a command on the clipboard that logs in over SSH and shows what fails"},
        Tool{copyHostKeyFix, "Copy Host Key Fix", "copy-host-key-fix",
             "Puts a command on the clipboard that replaces the host key stored for it"},
        Tool{copyKeyInstall, "Copy Key Install", "copy-key-install",
             "Puts a command on the clipboard that allows this Mac's SSH key there"},
        Tool{inspect, "Inspect", "inspect", "Shows this machine in Remote Detail"},
        Tool{remotePurge, "Remote Purge", "remote-purge",
             "Asks whether to purge the file caches of this machine"},
        Tool{remoteSafe, "Remote Safe", "remote-safe",
             "Takes the safest step: asks for a purge at the threshold, else copies a report on "
             "the heaviest app. Quits nothing."},
    };
    return all;
}

std::vector<RemoteOperation> foremostTools(RemoteHealth::Status status) {
    using enum RemoteHealth::Status;
    using enum RemoteOperation;
    switch (status) {
        case reachable:
            return {remotePurge, remoteSafe};
        case noAddress:
            // Each command needs an address.
            return {inspect};
        case noTailnetPath:
        case unknown:
            return {copyPing, copyTest};
        case connectionBlocked:
            return {copyPortTest, copyTest};
        case hostKeyIssue:
            return {copyTest, copyHostKeyFix};
        case authNeeded:
            return {copyTest, copyKeyInstall};
    }
    return {remotePurge, remoteSafe};
}

bool isEnabled(RemoteOperation operation, const RemoteHealth& machine) {
    const bool needsAddress = operation == RemoteOperation::copyHostKeyFix ||
                              operation == RemoteOperation::copyKeyInstall;
    return !needsAddress || machine.address != noRemoteAddress;
}

QString toolDescription(const Tool& tool, const RemoteHealth& machine) {
    return isEnabled(tool.operation, machine)
               ? QString::fromUtf8(tool.description)
               : u"Needs an address in the tailnet, which this machine does not have"_s;
}

}  // namespace tallowcrest::remote_health_lines
