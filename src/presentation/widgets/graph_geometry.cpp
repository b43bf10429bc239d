#include "presentation/widgets/graph_geometry.h"

#include <algorithm>
#include <cmath>

namespace tallowcrest {
namespace {

struct Span {
    double top = 0;
    double bottom = 0;
};

/// The heights that `line` itself passes in each column of pixels.
std::vector<Span> columnSpans(const std::vector<GraphPoint>& line) {
    if (line.size() < 2) {
        return {};
    }
    const auto count = static_cast<std::size_t>(std::ceil(line.back().x));
    std::vector<Span> spans;
    spans.reserve(count);
    std::size_t segment = 0;
    double y = line.front().y;
    for (std::size_t column = 0; column < count; ++column) {
        const double right = std::min(static_cast<double>(column + 1), line.back().x);
        Span span{y, y};
        if (right <= line.front().x) {
            spans.push_back(span);
            continue;
        }
        const auto pass = [&span](double height) {
            span.top = std::min(span.top, height);
            span.bottom = std::max(span.bottom, height);
        };
        while (segment + 2 < line.size() && line[segment + 1].x < right) {
            ++segment;
            pass(line[segment].y);
        }
        const GraphPoint& from = line[segment];
        const GraphPoint& to = line[segment + 1];
        y = to.x > from.x ? from.y + (to.y - from.y) * (right - from.x) / (to.x - from.x) : to.y;
        pass(y);
        spans.push_back(span);
    }
    return spans;
}

}  // namespace

double safeGraphValue(double value) {
    return std::isfinite(value) ? std::clamp(value, 0.0, 100.0) : 0.0;
}

double graphY(double value, double height) {
    return height * (1 - safeGraphValue(value) / 100);
}

double graphX(std::size_t index, std::size_t count, double width) {
    const double steps = count > 1 ? static_cast<double>(count - 1) : 1.0;
    return width * static_cast<double>(index) / steps;
}

double graphGapX(std::size_t index, std::size_t count, double width) {
    return (graphX(index - 1, count, width) + graphX(index, count, width)) / 2;
}

std::optional<std::size_t> nearestGraphPoint(double x, std::size_t count, double width) {
    if (count == 0) {
        return std::nullopt;
    }
    const auto last = static_cast<double>(count - 1);
    return static_cast<std::size_t>(std::lround(std::clamp(x / width * last, 0.0, last)));
}

std::vector<GraphPoint> graphLine(const std::vector<double>& values, double width, double height,
                                  const std::vector<std::size_t>& missing) {
    std::vector<GraphPoint> line;
    line.reserve(values.size());
    auto absent = missing.begin();
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (absent != missing.end() && *absent == i) {
            ++absent;
        } else {
            line.push_back({graphX(i, values.size(), width), graphY(values[i], height)});
        }
    }
    return line;
}

std::vector<std::size_t> loneGraphPoints(std::size_t count,
                                         const std::vector<std::size_t>& missing) {
    std::vector<std::size_t> lone;
    std::size_t begin = 0;
    const auto endAt = [&](std::size_t end) {
        if (end - begin == 1) {
            lone.push_back(begin);
        }
    };
    for (const std::size_t absent : missing) {
        endAt(absent);
        begin = absent + 1;
    }
    endAt(count);
    return lone;
}

std::vector<GraphColumn> graphColumns(const std::vector<GraphPoint>& line, double thickness) {
    const std::vector<Span> spans = columnSpans(line);
    const double reach = thickness / 2;
    const auto neighbours = static_cast<std::size_t>(std::ceil(reach));
    std::vector<GraphColumn> columns;
    columns.reserve(spans.size());
    for (std::size_t column = 0; column < spans.size(); ++column) {
        Span near = spans[column];
        const std::size_t end = std::min(spans.size(), column + neighbours + 1);
        for (std::size_t i = column - std::min(column, neighbours); i < end; ++i) {
            near.top = std::min(near.top, spans[i].top);
            near.bottom = std::max(near.bottom, spans[i].bottom);
        }
        const auto [top, bottom] = spans[column];
        const double rise = bottom - top;
        columns.push_back({static_cast<float>((top + bottom) / 2),
                           static_cast<float>(reach * std::sqrt(1 + rise * rise)),
                           static_cast<float>(std::max(1.0, rise)),
                           static_cast<float>(near.top - reach),
                           static_cast<float>(near.bottom + reach)});
        if (static_cast<double>(column + 1) <= line.front().x) {
            columns.back().half = -columns.back().softness;
        }
    }
    return columns;
}

void openGraphGaps(std::vector<GraphColumn>& columns, std::size_t count, double width,
                   const std::vector<std::size_t>& missing) {
    for (auto first = missing.begin(); first != missing.end();) {
        auto last = first;
        while (last + 1 != missing.end() && *(last + 1) == *last + 1) {
            ++last;
        }
        if (*first > 0 && *last + 1 < count) {
            const double end =
                std::min(graphX(*last + 1, count, width), static_cast<double>(columns.size()));
            auto column = static_cast<std::size_t>(std::ceil(graphX(*first - 1, count, width)));
            for (; static_cast<double>(column + 1) <= end; ++column) {
                columns[column].half = -columns[column].softness;
            }
        }
        first = last + 1;
    }
}

void dashGraphColumns(std::vector<GraphColumn>& columns, double thickness, double dash,
                      double gap) {
    double along = 0;
    for (GraphColumn& column : columns) {
        if (column.half < 0) {
            along = 0;
            continue;
        }
        // A vertical cut is as much longer than the thickness as the line is than the column.
        const double length = 2 * column.half / thickness;
        const double begin = std::fmod(along, dash + gap);
        if (begin >= dash && begin + length <= dash + gap) {
            column.half = -column.softness;
        }
        along += length;
    }
}

std::vector<double> graphGrid(double height) {
    return {0, height * 0.25, height * 0.5, height * 0.75, height};
}

std::vector<double> graphEvents(const std::vector<double>& fractions, double width) {
    std::vector<double> positions;
    for (const double fraction : fractions) {
        if (std::isfinite(fraction) && fraction >= 0 && fraction <= 1) {
            positions.push_back(width * fraction);
        }
    }
    return positions;
}

std::vector<std::optional<double>> graphLabelPlaces(const std::vector<double>& centers,
                                                    const std::vector<double>& widths, double width,
                                                    double gap) {
    std::vector<std::optional<double>> places(centers.size());
    double end = width;
    for (std::size_t i = centers.size(); i-- > 0;) {
        const double left =
            std::clamp(centers[i] - widths[i] / 2, 0.0, std::max(0.0, width - widths[i]));
        if (left + widths[i] <= end) {
            places[i] = left;
            end = left - gap;
        }
    }
    return places;
}

std::optional<double> graphThreshold(std::optional<double> threshold, double height) {
    if (!threshold || !std::isfinite(*threshold)) {
        return std::nullopt;
    }
    return graphY(*threshold, height);
}

std::string graphValueText(std::string_view name, double value) {
    return std::string(name) + " " + std::to_string(std::lround(safeGraphValue(value))) +
           " percent";
}

std::optional<std::string> graphSeriesText(std::string_view name, const std::vector<double>& values,
                                           const std::vector<std::size_t>& missing) {
    std::size_t count = values.size();
    for (auto absent = missing.rbegin(); absent != missing.rend() && *absent + 1 == count;
         ++absent) {
        --count;
    }
    if (count == 0) {
        return std::nullopt;
    }
    return count == values.size() ? graphValueText(name, values.back())
                                  : graphValueText(std::string(name) + " not measured last, before",
                                                   values[count - 1]);
}

}  // namespace tallowcrest
