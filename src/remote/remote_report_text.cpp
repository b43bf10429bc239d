#include "remote/remote_report_text.h"

#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "core/locale.h"
#include "core/number_text.h"
#include "core/text.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

std::string field(std::string_view text) {
    return replacingControlCharacters(text, " ");
}

std::string known(const std::optional<std::string>& text) {
    return field(text ? std::string_view(*text) : "unknown");
}

std::string percent(const std::optional<double>& figure) {
    return figure ? roundedToInteger(*figure) + "%" : "unknown";
}

}  // namespace

std::string remoteReportText(const RemoteHealth& machine, const Locale& locale) {
    std::string text = fmt::format(
        "Tallowcrest remote report - {}\n"
        "Host: {}\n"
        "Address: {}\n"
        "Status: {}\n"
        "{}: {}\n"
        "CPU: {}\n"
        "Memory pressure: {}\n"
        "Top CPU: {}\n"
        "Top Memory: {}\n"
        "Recommendation: {}\n"
        "Remote Processes:\n",
        locale.dateAndTime(machine.sampledAt), field(machine.hostName), field(machine.address),
        title(machine.status), machine.isLinux ? "Linux" : "macOS", known(machine.osVersion),
        percent(machine.cpuPercent), percent(machine.memoryPercent), known(machine.topCPUProcess),
        known(machine.topMemoryProcess), field(machine.recommendation));
    for (const RemoteProcess& process : machine.topProcesses) {
        text += fmt::format("{}\t{}% CPU\t{} MB\t{}\n", process.pid, withOneDecimal(process.cpu),
                            withoutDecimals(process.rssMB), field(process.displayName()));
    }
    return text + "Setup: " + field(machine.setupHint);
}

std::string remoteProcessReportText(const RemoteHealth& machine, const RemoteProcess& process) {
    return fmt::format(
        "Tallowcrest remote process\n"
        "Host: {}\n"
        "Address: {}\n"
        "PID: {}\n"
        "Process: {}\n"
        "CPU: {}%\n"
        "Memory: {} MB\n"
        "Command: {}",
        field(machine.hostName), field(machine.address), process.pid, field(process.displayName()),
        withOneDecimal(process.cpu), withoutDecimals(process.rssMB), field(process.command));
}

std::string remoteAppReportText(const RemoteHealth& machine, const RemoteAppImpact& app) {
    return fmt::format(
        "Tallowcrest remote app impact\n"
        "Host: {}\n"
        "App: {}\n"
        "CPU: {}%\n"
        "Memory: {} GB\n"
        "Processes: {}\n"
        "Protected: {}",
        field(machine.hostName), field(app.name), withOneDecimal(app.totalCPU),
        withOneDecimal(app.totalMemoryMB / megabytesPerGigabyte), app.processCount,
        app.protectedCount);
}

}  // namespace tallowcrest
