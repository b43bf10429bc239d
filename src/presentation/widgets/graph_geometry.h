#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tallowcrest {

/// A place on the graph's canvas: x to the right and y downwards from its top left corner.
struct GraphPoint {
    double x = 0;
    double y = 0;

    bool operator==(const GraphPoint&) const = default;
};

/// The percentage that is drawn for `value`: `value` clamped to 0 to 100, or 0 if it is not finite.
double safeGraphValue(double value);

/// The height at which the percentage `value` lies on a canvas `height` high; 100 is at the top.
double graphY(double value, double height);

/// Where the point `index` of `count` lies on a canvas `width` wide: they are spread over the whole
/// width, one alone lies at the left edge.
double graphX(std::size_t index, std::size_t count, double width);

/// Where the mark of the gap before the point `index`, not the first, lies: halfway to the point
/// before.
double graphGapX(std::size_t index, std::size_t count, double width);

/// The one of `count` points that lies nearest to `x`; absent without points.
std::optional<std::size_t> nearestGraphPoint(double x, std::size_t count, double width);

/// The line through `values`, oldest first, spread over the whole width, without those at the
/// indexes `missing`, which ascend. Empty for no values; one value lies at the left edge.
std::vector<GraphPoint> graphLine(const std::vector<double>& values, double width, double height,
                                  const std::vector<std::size_t>& missing = {});

/// The indexes of those of `count` values that have no measured value beside them, when those at
/// the indexes `missing`, which ascend, were not measured.
std::vector<std::size_t> loneGraphPoints(std::size_t count,
                                         const std::vector<std::size_t>& missing);

/// What a line covers of one column of pixels. A pixel whose middle lies at the height y is covered
/// by the smallest of three shares: (`half` - |y - `middle`|) / `softness` + 0.5, and the distances
/// to `top` and to `bottom`, inwards, + 0.5. Below 0 is nothing, above 1 is all of it.
struct GraphColumn {
    float middle = 0;
    /// Half of what a vertical cut through the line measures. Negative in the gap of a dashed line,
    /// where values are missing and before its first point, where nothing is drawn.
    float half = 0;
    /// The height over which an edge of the line crosses the column, at least one pixel.
    float softness = 1;
    /// Half the thickness beyond what the line passes in this column and those beside it. Where it
    /// bends, its steepness alone would let it stand out too far.
    float top = 0;
    float bottom = 0;

    bool operator==(const GraphColumn&) const = default;
};

/// The columns of pixels of a line `thickness` wide through `line`, whose points are in pixels and
/// ordered by x; the first column begins at x = 0. Empty for fewer than two points.
std::vector<GraphColumn> graphColumns(const std::vector<GraphPoint>& line, double thickness);

/// Removes the columns between measured values that are no neighbours from `columns`, which are
/// those of a line through `count` values without those at the indexes `missing`, which ascend,
/// spread over `width`.
void openGraphGaps(std::vector<GraphColumn>& columns, std::size_t count, double width,
                   const std::vector<std::size_t>& missing);

/// Removes the gaps of a dashed line from `columns`, which are those of a line `thickness` wide. A
/// dash and the gap behind it have these lengths along the line, in pixels. Each part of a line
/// where values are missing begins with a dash. A column that the line passes too steeply to lie
/// within one gap remains, so that no peak is lost.
void dashGraphColumns(std::vector<GraphColumn>& columns, double thickness, double dash, double gap);

/// The five heights of the grid, from the top down.
std::vector<double> graphGrid(double height);

/// The x positions of events. Positions that are not finite or off the canvas are omitted.
std::vector<double> graphEvents(const std::vector<double>& fractions, double width);

/// The left edges of texts `widths` wide, each centred at the one of `centers` of its index, but
/// within the canvas. Absent for a text that would come closer than `gap` to the next one that is
/// present. The centers ascend.
std::vector<std::optional<double>> graphLabelPlaces(const std::vector<double>& centers,
                                                    const std::vector<double>& widths, double width,
                                                    double gap);

/// The height of the warning line; absent without a finite threshold.
std::optional<double> graphThreshold(std::optional<double> threshold, double height);

/// One value in words, for example "CPU 42 percent".
std::string graphValueText(std::string_view name, double value);

/// The last of a series in words, without the values at the indexes `missing`, which ascend: for
/// example "Air 42 percent" or "Air not measured last, before 42 percent". Absent for a series with
/// no values.
std::optional<std::string> graphSeriesText(std::string_view name, const std::vector<double>& values,
                                           const std::vector<std::size_t>& missing = {});

}  // namespace tallowcrest
