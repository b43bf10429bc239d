#include "tests/support/load_trace.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

#include <fmt/format.h>

#include "tests/support/process_row.h"

namespace tallowcrest {
namespace {

/// Takes the next blank-separated field from the front of `line`.
std::string_view takeField(std::string_view& line) {
    const auto begin = line.find_first_not_of(' ');
    if (begin == std::string_view::npos) {
        line = {};
        return {};
    }
    const auto end = line.find(' ', begin);
    const std::string_view field = line.substr(begin, end - begin);
    line.remove_prefix(end == std::string_view::npos ? line.size() : end);
    return field;
}

template <class Number>
std::optional<Number> takeNumber(std::string_view& line) {
    const std::string_view field = takeField(line);
    Number value{};
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size()) {
        return std::nullopt;
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(value)) {
            return std::nullopt;
        }
    }
    return value;
}

std::optional<TracedSample> parseSample(std::string_view rest) {
    const auto seconds = takeNumber<double>(rest);
    const auto cpu = takeNumber<double>(rest);
    const auto pressure = takeNumber<double>(rest);
    const auto diskFree = takeNumber<double>(rest);
    if (!seconds || !cpu || !pressure || !diskFree || !takeField(rest).empty()) {
        return std::nullopt;
    }
    return TracedSample{*seconds, *cpu, *pressure, *diskFree, {}};
}

std::optional<ProcessSample> parseProcess(std::string_view rest) {
    ProcessSample process;
    const auto pid = takeNumber<std::int64_t>(rest);
    const auto cpu = takeNumber<double>(rest);
    const auto rss = takeNumber<double>(rest);
    const auto begin = rest.find_first_not_of(' ');
    if (!pid || !cpu || !rss || begin == std::string_view::npos) {
        return std::nullopt;
    }
    process.pid = *pid;
    process.cpu = *cpu;
    process.rssMB = *rss;
    process.command = rest.substr(begin);
    process.arguments = process.command;
    return process;
}

/// A deterministic wave between 0 and 1 with the given period in samples.
double wave(std::size_t index, double period) {
    constexpr double turn = 6.283185307179586;
    return 0.5 - 0.5 * std::cos(turn * static_cast<double>(index) / period);
}

}  // namespace

std::variant<LoadTrace, TraceError> parseLoadTrace(std::string_view text) {
    LoadTrace trace;
    std::size_t number = 0;
    while (!text.empty()) {
        ++number;
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const std::string_view kind = takeField(line);
        if (kind == "sample") {
            auto sample = parseSample(line);
            if (!sample) {
                return TraceError{number, "a sample has four figures"};
            }
            if (sample->seconds < 0.0) {
                return TraceError{number, "a sample is older than the trace"};
            }
            if (!trace.empty() && sample->seconds < trace.back().seconds) {
                return TraceError{number, "a sample is older than the one before"};
            }
            trace.push_back(std::move(*sample));
        } else if (kind == "process") {
            auto process = parseProcess(line);
            if (!process) {
                return TraceError{number, "a process has a number, two figures and a command"};
            }
            if (trace.empty()) {
                return TraceError{number, "a process belongs to a sample"};
            }
            trace.back().processes.push_back(std::move(*process));
        } else {
            return TraceError{number, "a line begins with sample, process or #"};
        }
    }
    return trace;
}

std::string formatLoadTrace(const LoadTrace& trace) {
    std::string text;
    for (const TracedSample& sample : trace) {
        text += fmt::format("sample {} {} {} {}\n", sample.seconds, sample.cpuPercent,
                            sample.pressure, sample.diskFreeGB);
        for (const ProcessSample& process : sample.processes) {
            text += fmt::format("process {} {} {} {}\n", process.pid, process.cpu, process.rssMB,
                                process.command);
        }
    }
    return text;
}

LoadTrace syntheticDay() {
    constexpr std::size_t samplesPerHour = 900;
    constexpr std::size_t hours = 24;
    LoadTrace day;
    day.reserve(hours * samplesPerHour);
    for (std::size_t index = 0; index < hours * samplesPerHour; ++index) {
        const std::size_t hour = index / samplesPerHour;
        const std::size_t inHour = index % samplesPerHour;
        TracedSample sample{4.0 * static_cast<double>(index), 8.0, 35.0, 120.0, {}};
        double indexer = 2.0;
        if (hour < 7) {
            // One sample per hour.
            indexer = inHour == 450 ? 380.0 : 2.0;
        } else if (hour < 12) {
            indexer = 300.0 + 80.0 * wave(index, 50.0);
        } else if (hour < 18) {
            sample.pressure = 70.0 + 22.0 * wave(index - 12 * samplesPerHour, 2700.0);
        }
        sample.cpuPercent = std::min(100.0, (indexer + 8.0) / 4.0);
        sample.processes = {processRow(700, "/usr/bin/photo-indexer", indexer, 900.0),
                            processRow(800, "/opt/firefox/firefox", 6.0, 2400.0),
                            processRow(1, "/usr/lib/systemd/systemd", 0.1, 12.0)};
        day.push_back(std::move(sample));
    }
    return day;
}

}  // namespace tallowcrest
