#include "monitor/session_insights.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <utility>

#include <fmt/format.h>

#include "core/number_text.h"

namespace tallowcrest {
namespace {

using Counts = std::map<std::string, std::int64_t>;

/// The nearest whole number, halves away from zero; 0 for NaN and infinities.
std::string percent(double value) {
    return roundedToInteger(std::isfinite(value) ? value : 0.0);
}

using Kind = SessionInsight::Kind;

SessionInsight insight(Kind kind, std::string title, std::string value, std::string detail) {
    return {UUID::random(), std::move(title), std::move(value), std::move(detail), kind};
}

struct PeakAndAverage {
    double peak = 0.0;
    double average = 0.0;
};

/// `history` is not empty.
PeakAndAverage summarized(std::span<const HistoryPoint> history, double HistoryPoint::*figure) {
    PeakAndAverage result{history.front().*figure, 0.0};
    for (const HistoryPoint& point : history) {
        result.peak = std::max(result.peak, point.*figure);
        result.average += point.*figure;
    }
    result.average /= static_cast<double>(history.size());
    return result;
}

SessionInsight peakCPU(std::span<const HistoryPoint> history) {
    const PeakAndAverage cpu = summarized(history, &HistoryPoint::cpu);
    return insight(Kind::peakCPU, "Peak CPU", percent(cpu.peak) + "%",
                   fmt::format("Average {}% across this session.", percent(cpu.average)));
}

SessionInsight peakMemory(std::span<const HistoryPoint> history) {
    const PeakAndAverage memory = summarized(history, &HistoryPoint::memory);
    return insight(
        Kind::peakMemory, "Peak Memory", percent(memory.peak) + "%",
        fmt::format("Average {}% pressure across this session.", percent(memory.average)));
}

/// `samples` is not empty.
SessionInsight recurringTopApp(const Counts& samples, const Locale& locale) {
    constexpr std::int64_t secondsPerSample = 4;
    const auto& [name, count] = *std::min_element(
        samples.begin(), samples.end(), [&locale](const auto& left, const auto& right) {
            return left.second != right.second
                       ? left.second > right.second
                       : std::is_lt(locale.compareIgnoringCase(left.first, right.first));
        });
    return insight(
        Kind::topApp, "Recurring Top App", name,
        fmt::format("Led App Impact for about {}s of sampled time.", count * secondsPerSample));
}

/// Of the machines that were reached, the one with the highest memory pressure, the first one among
/// equals; null when none was.
const RemoteHealth* mostPressed(std::span<const RemoteHealth> remoteHealth) {
    const RemoteHealth* result = nullptr;
    for (const RemoteHealth& machine : remoteHealth) {
        if (machine.online && (result == nullptr || machine.memoryPercent.value_or(0.0) >
                                                        result->memoryPercent.value_or(0.0))) {
            result = &machine;
        }
    }
    return result;
}

SessionInsight remoteWatch(const RemoteHealth& machine) {
    SessionInsight result = insight(Kind::remoteWatch, "Remote Watch", machine.hostName,
                                    fmt::format("Highest scanned remote memory pressure: {}%.",
                                                percent(machine.memoryPercent.value_or(0.0))));
    result.sampledAt = machine.sampledAt;
    return result;
}

/// `samples` is not empty.
SessionInsight remoteRepeater(const Counts& samples) {
    const auto& [name, count] = *std::max_element(
        samples.begin(), samples.end(),
        [](const auto& left, const auto& right) { return left.second < right.second; });
    return insight(Kind::remoteRepeater, "Remote Repeater", name,
                   fmt::format("Led a remote scan {} time{}.", count, pluralEnding(count)));
}

}  // namespace

SessionInsight startingInsight() {
    return insight(Kind::starting, "Session", "Starting",
                   "Tallowcrest is collecting enough samples to identify patterns.");
}

std::vector<SessionInsight> buildSessionInsights(const SessionFindings& findings,
                                                 const Locale& locale) {
    if (findings.history.empty()) {
        return {startingInsight()};
    }
    std::vector<SessionInsight> insights{peakCPU(findings.history), peakMemory(findings.history)};
    if (!findings.topAppSamples.empty()) {
        insights.push_back(recurringTopApp(findings.topAppSamples, locale));
    }
    if (const RemoteHealth* machine = mostPressed(findings.remoteHealth)) {
        insights.push_back(remoteWatch(*machine));
    }
    if (!findings.remoteTopAppSamples.empty()) {
        insights.push_back(remoteRepeater(findings.remoteTopAppSamples));
    }
    return insights;
}

}  // namespace tallowcrest
