#include "sampling/ps_parser.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "core/number_text.h"
#include "core/text.h"
#include "sampling/binary_units.h"

namespace tallowcrest {
namespace {

constexpr std::size_t columnCount = 5;

/// Absent when the line has fewer columns. The last column extends to the end of the line.
std::optional<std::array<std::string_view, columnCount>> splitColumns(std::string_view line) {
    std::array<std::string_view, columnCount> columns;
    for (std::size_t index = 0; index < columnCount; ++index) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        if (line.empty()) {
            return std::nullopt;
        }
        const bool isLast = index + 1 == columnCount;
        columns[index] = isLast ? line : line.substr(0, line.find(' '));
        line.remove_prefix(columns[index].size());
    }
    return columns;
}

/// Limits a figure to between 0 and 10^12, so that sums over all rows stay finite and can be
/// converted to integers, whatever the tool has written.
double limited(double figure) {
    constexpr double largestFigure = 1e12;
    return figure > 0.0 ? std::min(figure, largestFigure) : 0.0;
}

std::optional<ProcessSample> parseRow(std::string_view line) {
    const auto columns = splitColumns(line);
    if (!columns) {
        return std::nullopt;
    }
    const auto pid = parseDecimalInteger((*columns)[0]);
    const auto cpu = parseDecimalFloat((*columns)[1]);
    const auto memoryPercent = parseDecimalFloat((*columns)[2]);
    const auto residentKibibytes = parseDecimalFloat((*columns)[3]);
    if (!pid || !cpu || !memoryPercent || !residentKibibytes) {
        return std::nullopt;
    }
    const std::string command((*columns)[4]);
    return ProcessSample{*pid,
                         limited(*cpu),
                         limited(*memoryPercent),
                         limited(*residentKibibytes) * megabytesPerKibibyte,
                         command,
                         command};
}

}  // namespace

std::vector<ProcessSample> parseProcessRows(std::string_view text) {
    std::vector<ProcessSample> rows;
    rows.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    while (const auto line = takeLine(text)) {
        if (auto row = parseRow(*line)) {
            rows.push_back(std::move(*row));
        }
    }
    return rows;
}

}  // namespace tallowcrest
