#include "remote/remote_sample.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/number_text.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::string_view processPrefix = "proc=";

std::optional<double> figure(std::string_view text) {
    constexpr double largest = 1e12;
    const std::optional<double> value = parseDecimalFloat(text);
    return value ? std::optional(std::clamp(*value, -largest, largest)) : std::nullopt;
}

/// The row of "pid|cpu|megabytes|command", of which the command may contain more bars.
std::optional<RemoteProcess> parseProcess(std::string_view row) {
    std::array<std::string_view, 3> figures;
    for (std::string_view& each : figures) {
        const std::size_t bar = row.find('|');
        if (bar == std::string_view::npos) {
            return std::nullopt;
        }
        each = row.substr(0, bar);
        row.remove_prefix(bar + 1);
    }
    const auto pid = parseDecimalInteger(figures[0]);
    const auto cpu = figure(figures[1]);
    const auto rssMB = figure(figures[2]);
    if (!pid || !cpu || !rssMB) {
        return std::nullopt;
    }
    return RemoteProcess{*pid, *cpu, *rssMB, std::string(row)};
}

}  // namespace

std::optional<std::string> RemoteSample::value(std::string_view key) const {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<double> RemoteSample::cpuPercent() const {
    const auto sum = figure(value("cpu").value_or(""));
    const double cores = std::max(figure(value("cores").value_or("")).value_or(1.0), 1.0);
    return sum ? std::optional(std::min(*sum / cores, 100.0)) : std::nullopt;
}

std::optional<double> RemoteSample::memoryPercent() const {
    return figure(value("mem").value_or(""));
}

RemoteSample parseRemoteSample(std::string_view output) {
    RemoteSample sample;
    while (const auto line = takeLine(output)) {
        if (line->size() > longestRemoteLine) {
            continue;
        }
        const std::size_t equals = line->find('=');
        if (equals != std::string_view::npos && equals > 0 && equals + 1 < line->size()) {
            const std::string_view key = line->substr(0, equals);
            if (sample.values.size() < maximumRemoteValues || sample.values.contains(key)) {
                sample.values.insert_or_assign(std::string(key),
                                               std::string(line->substr(equals + 1)));
            }
        }
        if (!line->starts_with(processPrefix) ||
            sample.processes.size() == maximumRemoteProcesses) {
            continue;
        }
        if (auto process = parseProcess(line->substr(processPrefix.size()))) {
            sample.processes.push_back(std::move(*process));
        }
    }
    return sample;
}

}  // namespace tallowcrest
