#include "monitor/recommendations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "sampling/binary_units.h"
#include "sampling/lowered_name.h"

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;

constexpr std::size_t maximumRecommendations = 5;

/// Stands between a name and a figure in the only titles that have a process's name.
constexpr std::string_view isUsing = " is using ";

/// NaN in one row would make the sums and comparisons with the other rows meaningless.
double zeroIfNaN(double value) {
    return std::isnan(value) ? 0.0 : value;
}

/// The first of the rows with the highest figure seen so far.
class HighestRow {
public:
    void offer(const ProcessSample& row, double value) {
        if (row_ == nullptr || value > value_) {
            row_ = &row;
            value_ = value;
        }
    }

    const ProcessSample* row() const { return row_; }
    double value() const { return value_; }
    std::optional<std::int64_t> pid() const {
        return row_ == nullptr ? std::nullopt : std::optional(row_->pid);
    }

private:
    const ProcessSample* row_ = nullptr;
    double value_ = 0.0;
};

/// The rows whose lower-cased name contains a keyword.
struct Family {
    explicit Family(std::string_view keyword) : needle(keyword) {}

    NameNeedle needle;
    std::int64_t count = 0;
    double sumMB = 0.0;
    HighestRow byMemory;
};

/// Everything that the cards need to know of the rows, from one pass over them.
struct TableReading {
    explicit TableReading(const std::vector<ProcessSample>& rows) {
        LoweredName name;
        for (const ProcessSample& row : rows) {
            const double rssMB = zeroIfNaN(row.rssMB);
            byMemory.offer(row, rssMB);
            byCPU.offer(row, zeroIfNaN(row.cpu));
            name.assign(row.displayName());
            for (Family& family : browsers) {
                collect(family, name, row, rssMB);
            }
            collect(docker, name, row, rssMB);
        }
    }

    HighestRow byMemory;
    HighestRow byCPU;
    /// In the order in which they are tested: only one gets a card.
    std::array<Family, 4> browsers{Family("chrome"), Family("safari"), Family("firefox"),
                                   Family("arc")};
    /// This also matches its helpers, whose names begin with "com.docker".
    Family docker{"docker"};

private:
    static void collect(Family& family, const LoweredName& name, const ProcessSample& row,
                        double rssMB) {
        if (name.contains(family.needle)) {
            ++family.count;
            family.sumMB += rssMB;
            family.byMemory.offer(row, rssMB);
        }
    }
};

Recommendation card(std::string title, std::string detail, Severity severity,
                    std::optional<std::int64_t> relatedPID) {
    return {UUID::random(), std::move(title), std::move(detail), severity, relatedPID};
}

std::string gigabytes(double megabytes, const Locale& locale) {
    return locale.decimal(megabytes / megabytesPerGigabyte, 1);
}

std::optional<Recommendation> pressureCard(double pressure, double freeGB,
                                           const TableReading& table, const Locale& locale) {
    constexpr double high = 85.0;
    constexpr double rising = 72.0;
    if (pressure >= high) {
        return card("Memory pressure is high",
                    "Review the biggest memory users before purging caches. Quitting one heavy app "
                    "usually helps more than forcing cache cleanup.",
                    Severity::urgent, table.byMemory.pid());
    }
    if (pressure >= rising) {
        return card("Memory pressure is rising",
                    fmt::format("You have {} GB free or reclaimable. Keep an eye on the top memory "
                                "apps.",
                                locale.decimal(freeGB, 1)),
                    Severity::caution, table.byMemory.pid());
    }
    return std::nullopt;
}

std::optional<Recommendation> cpuCard(double cpuPercent, const TableReading& table) {
    constexpr double veryHigh = 85.0;
    constexpr double busy = 65.0;
    if (cpuPercent >= veryHigh) {
        const ProcessSample* top = table.byCPU.row();
        return card("CPU load is very high",
                    fmt::format("{} is currently the top CPU user. If the Mac feels hot or laggy, "
                                "quit or restart that app.",
                                top == nullptr ? "A process" : top->displayName()),
                    Severity::urgent, table.byCPU.pid());
    }
    if (cpuPercent >= busy) {
        return card("CPU is busy",
                    "If fans, battery drain, or lag are noticeable, sort by CPU and close work you "
                    "are not using.",
                    Severity::caution, table.byCPU.pid());
    }
    return std::nullopt;
}

std::optional<Recommendation> heavyProcessCard(double pressure, const TableReading& table,
                                               const Locale& locale) {
    constexpr double heavyMB = 2000.0;
    constexpr double urgentPressure = 75.0;
    const ProcessSample* top = table.byMemory.row();
    if (top == nullptr || !(table.byMemory.value() >= heavyMB)) {
        return std::nullopt;
    }
    return card(fmt::format("{}{}{} GB", top->displayName(), isUsing,
                            gigabytes(table.byMemory.value(), locale)),
                "Select it in Heavy Processes if you want Tallowcrest to ask it to quit.",
                pressure >= urgentPressure ? Severity::urgent : Severity::caution, top->pid);
}

std::optional<Recommendation> browserCard(const TableReading& table) {
    constexpr std::int64_t manyHelpers = 8;
    constexpr double heavyMB = 2500.0;
    constexpr double urgentMB = 4000.0;
    const auto family =
        std::find_if(table.browsers.begin(), table.browsers.end(), [](const Family& browser) {
            return browser.count >= manyHelpers || browser.sumMB >= heavyMB;
        });
    if (family == table.browsers.end()) {
        return std::nullopt;
    }
    std::string name(family->needle.text);
    name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return card(fmt::format("{} has {} helper processes", name, family->count),
                "Browser tabs and extensions are often the fastest win. Close unused windows or "
                "restart the browser if memory keeps climbing.",
                family->sumMB >= urgentMB ? Severity::urgent : Severity::caution,
                family->byMemory.pid());
}

std::optional<Recommendation> dockerCard(const TableReading& table, const Locale& locale) {
    constexpr double heavyMB = 1500.0;
    if (!(table.docker.sumMB >= heavyMB)) {
        return std::nullopt;
    }
    return card(fmt::format("Docker is holding {} GB", gigabytes(table.docker.sumMB, locale)),
                "If you are not developing right now, quitting Docker Desktop can free a "
                "meaningful chunk of memory.",
                Severity::caution, table.docker.byMemory.pid());
}

Recommendation healthyCard() {
    return card("This Mac looks healthy",
                "CPU and memory pressure are in a comfortable range. No optimization action is "
                "needed right now.",
                Severity::info, std::nullopt);
}

Recommendation sustainedCPUCard(double average, std::optional<std::int64_t> relatedPID) {
    constexpr double urgentAverage = 85.0;
    return card("CPU has stayed high for about a minute",
                "This looks sustained rather than a brief spike. Check App Impact first, then quit "
                "or restart the top app if the Mac feels sluggish.",
                average >= urgentAverage ? Severity::urgent : Severity::caution, relatedPID);
}

Recommendation sustainedMemoryCard(double average, std::optional<std::int64_t> relatedPID) {
    constexpr double urgentAverage = 88.0;
    return card("Memory pressure has stayed elevated",
                "Sustained memory pressure usually points to a browser, Docker, or a development "
                "process holding onto RAM.",
                average >= urgentAverage ? Severity::urgent : Severity::caution, relatedPID);
}

void cap(std::vector<Recommendation>& cards) {
    if (cards.size() > maximumRecommendations) {
        cards.erase(cards.begin() + std::ptrdiff_t{maximumRecommendations}, cards.end());
    }
}

/// Keeps the first of several cards with the same title.
void dropRepeatedTitles(std::vector<Recommendation>& cards) {
    std::unordered_set<std::string> seen;
    std::erase_if(cards,
                  [&seen](const Recommendation& each) { return !seen.insert(each.title).second; });
}

}  // namespace

std::vector<Recommendation> buildRecommendations(const std::vector<ProcessSample>& processes,
                                                 double freeGB, double pressure, double cpuPercent,
                                                 const Locale& locale) {
    const TableReading table(processes);
    std::vector<Recommendation> cards;
    const auto add = [&cards](std::optional<Recommendation> each) {
        if (each) {
            cards.push_back(*std::move(each));
        }
    };
    add(pressureCard(pressure, freeGB, table, locale));
    add(cpuCard(cpuPercent, table));
    add(heavyProcessCard(pressure, table, locale));
    add(browserCard(table));
    add(dockerCard(table, locale));
    if (cards.empty()) {
        cards.push_back(healthyCard());
    }
    cap(cards);
    return cards;
}

std::vector<Recommendation> addSustainedRecommendations(std::vector<Recommendation> recommendations,
                                                        const std::vector<HistoryPoint>& history,
                                                        const std::vector<AppImpact>& appImpacts) {
    constexpr std::size_t pointsPerMinute = 15;
    constexpr std::size_t fewestPoints = 10;
    constexpr double highCPU = 70.0;
    constexpr double highMemory = 78.0;
    const std::size_t count = std::min(history.size(), pointsPerMinute);
    if (count < fewestPoints) {
        return recommendations;
    }
    double sumOfCPU = 0.0;
    double sumOfMemory = 0.0;
    for (auto point = history.end() - static_cast<std::ptrdiff_t>(count); point != history.end();
         ++point) {
        sumOfCPU += point->cpu;
        sumOfMemory += point->memory;
    }
    const double averageCPU = sumOfCPU / static_cast<double>(count);
    const double averageMemory = sumOfMemory / static_cast<double>(count);
    const auto relatedPID = appImpacts.empty() ? std::nullopt : appImpacts.front().topPID;

    std::vector<Recommendation> cards;
    cards.reserve(recommendations.size() + 2);
    if (averageMemory >= highMemory) {
        cards.push_back(sustainedMemoryCard(averageMemory, relatedPID));
    }
    if (averageCPU >= highCPU) {
        cards.push_back(sustainedCPUCard(averageCPU, relatedPID));
    }
    std::move(recommendations.begin(), recommendations.end(), std::back_inserter(cards));
    dropRepeatedTitles(cards);
    cap(cards);
    return cards;
}

std::string titleWithoutName(const Recommendation& recommendation) {
    const std::string& title = recommendation.title;
    // The last one: the name can have the words, too.
    const std::size_t end = title.rfind(isUsing);
    return end == std::string::npos ? title : "A process" + title.substr(end);
}

}  // namespace tallowcrest
