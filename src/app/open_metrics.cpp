#include "app/open_metrics.h"

#include <cstddef>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "app/console.h"
#include "monitor/load_rules.h"
#include "monitor/recommendations.h"
#include "sampling/app_impact.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

constexpr std::size_t longestLabel = 80;

std::string labelValue(std::string_view text) {
    std::string escaped;
    for (const char c : printableText(text, longestLabel).text) {
        if (c == '"' || c == '\\') {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

/// With "N" in place of each number: a label whose value changes with every sample would be a new
/// time series each time.
std::string withoutNumbers(std::string_view text) {
    std::string result;
    bool isInNumber = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto isDigit = [&](std::size_t at) {
            return at < text.size() && text[at] >= '0' && text[at] <= '9';
        };
        const bool isSeparator = isInNumber && (text[i] == '.' || text[i] == ',') && isDigit(i + 1);
        if (isDigit(i) || isSeparator) {
            if (!isInNumber) {
                result += 'N';
            }
            isInNumber = true;
        } else {
            result += text[i];
            isInNumber = false;
        }
    }
    return result;
}

class Exposition {
public:
    void family(std::string_view name, std::string_view unit, std::string_view help) {
        name_ = name;
        fmt::format_to(std::back_inserter(text_), "# TYPE {} gauge\n", name);
        if (!unit.empty()) {
            fmt::format_to(std::back_inserter(text_), "# UNIT {} {}\n", name, unit);
        }
        fmt::format_to(std::back_inserter(text_), "# HELP {} {}\n", name, help);
    }

    /// `labels` is the text between the braces.
    void value(double value, std::string_view labels = {}) {
        if (labels.empty()) {
            fmt::format_to(std::back_inserter(text_), "{} {}\n", name_, value);
        } else {
            fmt::format_to(std::back_inserter(text_), "{}{{{}}} {}\n", name_, labels, value);
        }
    }

    void single(std::string_view name, std::string_view unit, std::string_view help,
                double figure) {
        family(name, unit, help);
        value(figure);
    }

    std::string finish() && {
        text_ += "# EOF\n";
        return std::move(text_);
    }

private:
    std::string text_;
    std::string_view name_;
};

void writeMachine(Exposition& text, const SystemSnapshot& snapshot, double warningThreshold) {
    text.single("tallowcrest_cpu_load_ratio", "ratio", "CPU load of the whole machine, 0 to 1.",
                snapshot.cpuPercent / 100.0);
    if (const MemorySnapshot& memory = snapshot.memory; memory.totalGB > 0.0) {
        text.single("tallowcrest_memory_size_bytes", "bytes", "Physical memory.",
                    memory.totalGB * bytesPerGigabyte);
        text.single("tallowcrest_memory_used_bytes", "bytes", "Memory that is not available.",
                    memory.usedGB * bytesPerGigabyte);
        text.single("tallowcrest_memory_available_bytes", "bytes",
                    "Memory that is free or can be reclaimed.", memory.freeGB * bytesPerGigabyte);
        text.single("tallowcrest_memory_pressure_ratio", "ratio",
                    "Share of the memory that is not available, 0 to 1.", memory.pressure / 100.0);
    }
    if (const DiskSnapshot& disk = snapshot.disk; disk.totalGB > 0.0) {
        text.single("tallowcrest_home_volume_size_bytes", "bytes",
                    "Size of the volume that holds the home directory.",
                    disk.totalGB * bytesPerGigabyte);
        text.single("tallowcrest_home_volume_free_bytes", "bytes",
                    "Free space of the volume that holds the home directory.",
                    disk.freeGB * bytesPerGigabyte);
    }
    text.single("tallowcrest_warning_threshold_ratio", "ratio",
                "CPU load or memory pressure from which on the machine counts as loaded, 0 to 1.",
                warningThreshold / 100.0);
    text.single("tallowcrest_load_warning", "",
                "1 while the CPU load or the memory pressure is at or above the threshold.",
                load_rules::isOverThreshold(snapshot, warningThreshold) ? 1.0 : 0.0);
}

void writeGroups(Exposition& text, const std::vector<AppImpact>& groups) {
    // Printable forms of two names can be the same, and a series must not occur twice.
    std::set<std::string> written;
    std::vector<std::pair<std::string, const AppImpact*>> rows;
    for (const AppImpact& group : groups) {
        std::string label = fmt::format("app=\"{}\"", labelValue(group.name));
        if (rows.size() < maximumAppImpacts && written.insert(label).second) {
            rows.emplace_back(std::move(label), &group);
        }
    }
    const auto writeFamily = [&](std::string_view name, std::string_view unit,
                                 std::string_view help, auto&& figure) {
        text.family(name, unit, help);
        for (const auto& [label, group] : rows) {
            text.value(figure(*group), label);
        }
    };
    writeFamily("tallowcrest_app_cpu_ratio", "ratio",
                "CPU load of an application's processes, 1 for one core.",
                [](const AppImpact& group) { return group.totalCPU / 100.0; });
    writeFamily("tallowcrest_app_memory_bytes", "bytes",
                "Resident memory of an application's processes.",
                [](const AppImpact& group) { return group.totalMemoryMB * bytesPerMegabyte; });
    writeFamily("tallowcrest_app_processes", "", "Processes of an application.",
                [](const AppImpact& group) { return static_cast<double>(group.processCount); });
}

void writeRecommendations(Exposition& text, const std::vector<Recommendation>& recommendations) {
    text.family("tallowcrest_recommendation_info", "",
                "What the program recommends at present; always 1.");
    std::set<std::string> written;
    for (const Recommendation& each : recommendations) {
        std::string labels =
            fmt::format("severity=\"{}\",title=\"{}\"", labelValue(title(each.severity)),
                        labelValue(withoutNumbers(titleWithoutName(each))));
        if (written.insert(labels).second) {
            text.value(1.0, labels);
        }
    }
}

}  // namespace

std::string openMetrics(const SystemSnapshot& snapshot,
                        const std::vector<Recommendation>& recommendations,
                        double warningThreshold) {
    Exposition text;
    text.family("tallowcrest_build_info", "", "The version of the program; always 1.");
    text.value(1.0, "version=\"" TALLOWCREST_VERSION "\"");
    text.single("tallowcrest_sample_timestamp_seconds", "seconds",
                "When the sample was taken, in seconds since 1970.",
                snapshot.sampledAt.unixSeconds());
    writeMachine(text, snapshot, warningThreshold);
    writeGroups(text, snapshot.appImpacts);
    writeRecommendations(text, recommendations);
    return std::move(text).finish();
}

}  // namespace tallowcrest
