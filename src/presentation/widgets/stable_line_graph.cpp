#include "presentation/widgets/stable_line_graph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>
#include <QtMath>

#include "presentation/widgets/graph_cursor.h"
#include "presentation/widgets/text_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr double gridOpacity = 0.14;
constexpr double thresholdOpacity = 0.55;
constexpr double eventOpacity = 0.35;
constexpr double gapOpacity = 0.5;
constexpr double areaOpacity = 0.1;
constexpr double ruleWidth = 1;
constexpr double dashLength = 4;
constexpr double lineWidth = 2;
// A line through one point has no length, so a point without a neighbour is marked with a dot.
constexpr double lonePointSize = 6;
// Around the canvas: one pixel of a line along its edge, and the focus ring.
constexpr int overhang = 3;
constexpr int swatchWidth = 16;
constexpr int widestName = 160;

/// How a line is interrupted, and its swatch in the legend.
struct Dashes {
    double length;
    double gap;
    double swatchLength;
    double swatchGap;
};

/// The first series is a continuous line. Thus the series differ by more than their colours.
bool isDashed(std::size_t series) {
    return series > 0;
}

Dashes dashesOf(std::size_t series) {
    constexpr std::array dashes{Dashes{7, 4, 6, 4}, Dashes{2, 3, 2.5, 2}, Dashes{14, 4, 11, 2}};
    return isDashed(series) ? dashes[(series - 1) % dashes.size()] : Dashes{0, 0, swatchWidth, 1};
}

}  // namespace

bool operator==(const StableGraphSeries& a, const StableGraphSeries& b) {
    return a.id == b.id && a.color == b.color && a.fillsArea == b.fillsArea &&
           a.missing == b.missing && a.note == b.note &&
           std::equal(a.values.begin(), a.values.end(), b.values.begin(), b.values.end(),
                      [](double first, double second) {
                          return safeGraphValue(first) == safeGraphValue(second);
                      });
}

StableLineGraph::StableLineGraph(GraphFormats formats, QWidget* parent)
    : PaintedFigure(parent),
      percent_(std::move(formats.percent)),
      scale_{percent_(0), percent_(50), percent_(100)},
      timeFormats_(std::move(formats.times)) {
    setAccessibleName(u"Performance graph"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    StableLineGraph::measure();
    describeAll();
}

void StableLineGraph::setSeries(std::vector<StableGraphSeries> series, GraphTimes times) {
    if (series == series_ && times == times_) {
        return;
    }
    const bool hasSameLegend =
        std::equal(series.begin(), series.end(), series_.begin(), series_.end(),
                   [](const StableGraphSeries& a, const StableGraphSeries& b) {
                       return a.id == b.id && a.color == b.color;
                   });
    series_ = std::move(series);
    lonePoints_.clear();
    for (const StableGraphSeries& each : series_) {
        lonePoints_.push_back(loneGraphPoints(each.values.size(), each.missing));
    }
    cursor_ = cursorAmong(times, pointCount());
    times_ = std::move(times);
    timeLabels_ = graphTimeLabels(times_.seconds, canvasRect().width(), timeFormats_, timeLabels_);
    describeAll();
    if (hasSameLegend) {
        update(plotPixels());
    } else {
        update();
    }
}

void StableLineGraph::setWarningThreshold(std::optional<double> threshold) {
    if (threshold != warningThreshold_) {
        warningThreshold_ = threshold;
        update(canvasPixels());
    }
}

void StableLineGraph::setEventFractions(std::vector<double> fractions,
                                        std::vector<GraphEventLabel> labels) {
    eventFractions_ = std::move(fractions);
    eventLabels_ = std::move(labels);
    std::vector<double> positions = graphEvents(eventFractions_, canvasRect().width());
    if (positions != eventPositions_) {
        eventPositions_ = std::move(positions);
        update(canvasPixels());
    }
}

QRectF StableLineGraph::canvasRect() const {
    const int top = captionHeight_ + spacing::unit;
    const int bottom = overhang + timeLabelHeight_;
    const int right = scaleWidth_ + spacing::unit;
    return {overhang, static_cast<double>(top),
            std::max(1.0, static_cast<double>(width() - right - overhang)),
            std::max(1.0, static_cast<double>(height() - top - bottom))};
}

QRect StableLineGraph::canvasPixels() const {
    return canvasRect().adjusted(-overhang, -overhang, overhang, overhang).toAlignedRect();
}

QRect StableLineGraph::plotPixels() const {
    QRect plot = canvasPixels();
    plot.setBottom(height() - 1);
    return plot;
}

QSize StableLineGraph::sizeHint() const {
    return {480, 220};
}

QSize StableLineGraph::minimumSizeHint() const {
    return {160, 120};
}

void StableLineGraph::measure() {
    const QFont& font = CrestFonts::current().caption;
    scaleWidth_ = 0;
    for (const QString& text : scale_) {
        scaleWidth_ = std::max(scaleWidth_, figuresWidth(font, text));
    }
    captionHeight_ = QFontMetrics(font).lineSpacing();
    timeLabelHeight_ = graphTimeLabelHeight();
    timeLabels_.clear();
}

void StableLineGraph::arrange() {
    eventPositions_ = graphEvents(eventFractions_, canvasRect().width());
    timeLabels_ = graphTimeLabels(times_.seconds, canvasRect().width(), timeFormats_, timeLabels_);
}

void StableLineGraph::paintEvent(QPaintEvent* event) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    const QRect canvas = canvasPixels();
    // A new sample changes only the canvas and the times below it.
    if (!canvas.contains(event->rect())) {
        painter.fillRect(event->rect(), theme.cardBackground);
        painter.setFont(CrestFonts::current().caption);
        paintGraphTimeLabels(painter, canvasRect().bottomLeft() + QPointF(0, overhang), timeLabels_,
                             theme);
    }
    if (!plotPixels().contains(event->rect())) {
        paintLegend(painter, theme);
        paintScale(painter, theme);
    }
    if (event->rect().intersects(canvas)) {
        painter.save();
        paintCanvas(painter, theme);
        painter.restore();
        paintCursor(painter, theme);
    }
}

void StableLineGraph::paintLegend(QPainter& painter, const CrestTheme& theme) const {
    int left = 1;
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const StableGraphSeries& series = series_[i];
        if (left + swatchWidth >= width()) {
            return;
        }
        // The names behind it keep their share of the width.
        const int later =
            static_cast<int>(series_.size() - i - 1) * (width() / static_cast<int>(series_.size()));
        const int room = std::min(widestName, width() - left - swatchWidth - spacing::unit -
                                                  (later > 0 ? spacing::gap : 0) - later);
        const QString name = fittedLines(series.id, painter.font(), room, 1).value(0);
        const double middle = captionHeight_ / 2.0;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(series.color.in(theme));
        const Dashes dashes = dashesOf(i);
        for (double x = 0; x < swatchWidth; x += dashes.swatchLength + dashes.swatchGap) {
            const double length = std::min(dashes.swatchLength, swatchWidth - x);
            painter.drawRoundedRect(QRectF(left + x, middle - 2, length, 4), 2, 2);
        }
        left += swatchWidth + spacing::unit;
        painter.setPen(theme.secondaryText);
        painter.drawText(QRect(left, 0, room, captionHeight_),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, name);
        left += painter.fontMetrics().horizontalAdvance(name) + spacing::gap;
    }
}

void StableLineGraph::paintScale(QPainter& painter, const CrestTheme& theme) const {
    const QRectF canvas = canvasRect();
    painter.setPen(theme.secondaryText);
    for (std::size_t i = 0; i < scale_.size(); ++i) {
        const double percent = 50.0 * static_cast<double>(i);
        const double middle = canvas.top() + graphY(percent, canvas.height());
        painter.drawText(QRectF(width() - scaleWidth_, middle - captionHeight_ / 2.0, scaleWidth_,
                                captionHeight_),
                         Qt::AlignRight | Qt::AlignVCenter, scale_[i]);
    }
}

void StableLineGraph::paintCanvas(QPainter& painter, const CrestTheme& theme) {
    const QRect place = canvasPixels();
    const double ratio = devicePixelRatioF();
    const QRectF visible = canvasRect().translated(-place.topLeft());
    const QRectF canvas(visible.topLeft() * ratio, visible.size() * ratio);
    const QPoint origin = canvas.topLeft().toPoint();
    const std::vector<GraphRule> rules = canvasRules(canvas, ratio, theme);
    std::vector<std::vector<GraphColumn>> lines;
    lines.reserve(series_.size());
    for (const StableGraphSeries& series : series_) {
        lines.push_back(
            graphColumns(graphLine(series.values, canvas.width(), canvas.height(), series.missing),
                         lineWidth * ratio));
        openGraphGaps(lines.back(), series.values.size(), canvas.width(), series.missing);
        if (isDashed(lines.size() - 1)) {
            const Dashes dashes = dashesOf(lines.size() - 1);
            dashGraphColumns(lines.back(), lineWidth * ratio, dashes.length * ratio,
                             dashes.gap * ratio);
        }
    }

    // Unscaled: Qt is slow to find out for each part that nothing needs scaling.
    painter.scale(1 / ratio, 1 / ratio);
    const QPoint corner = (QPointF(place.topLeft()) * ratio).toPoint();
    // A part of this width stays in the processor's cache while all its layers are painted.
    constexpr int partWidth = 128;
    const QSize partSize(partWidth, qCeil(place.height() * ratio));
    if (part_.size() != partSize) {
        part_ = QImage(partSize, QImage::Format_RGB32);
    }
    const int width = qCeil(place.width() * ratio);
    for (int left = 0; left < width; left += partWidth) {
        part_.fill(theme.cardBackground);
        for (const GraphRule& rule : rules) {
            layGraphRule(part_, rule, QPoint(-left, 0));
        }
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const QRgb color = series_[i].color.in(theme).rgb();
            const QPoint partOrigin = origin - QPoint(left, 0);
            if (series_[i].fillsArea) {
                layBelowGraphColumns(part_, lines[i], partOrigin, qRound(canvas.bottom()), color,
                                     areaOpacity);
            }
            drawGraphColumns(part_, lines[i], partOrigin, color);
            if (!lonePoints_[i].empty()) {
                paintLonePoints(part_, canvas.translated(-left, 0), ratio, series_[i],
                                lonePoints_[i], theme);
            }
        }
        const int used = std::min(partWidth, width - left);
        painter.drawImage(corner + QPoint(left, 0), part_, QRect(0, 0, used, part_.height()));
    }
}

std::vector<GraphRule> StableLineGraph::canvasRules(const QRectF& canvas, double ratio,
                                                    const CrestTheme& theme) const {
    std::vector<GraphRule> rules;
    const auto add = [&](QPointF start, QPointF end, int dash, const QColor& color,
                         double opacity) {
        rules.push_back({sharpRule(start, end, ruleWidth * ratio), dash, color.rgb(), opacity});
    };
    const auto addLevel = [&](double height, int dash, const QColor& color, double opacity) {
        const double y = canvas.top() + height;
        add({canvas.left(), y}, {canvas.right(), y}, dash, color, opacity);
    };
    const int dash = qRound(dashLength * ratio);
    for (const double height : graphGrid(canvas.height())) {
        addLevel(height, 0, theme.secondaryText, gridOpacity);
    }
    if (const auto height = graphThreshold(warningThreshold_, canvas.height())) {
        addLevel(*height, dash, theme.caution, thresholdOpacity);
    }
    for (const double position : eventPositions_) {
        const double x = canvas.left() + position * ratio;
        add({x, canvas.top()}, {x, canvas.bottom()}, dash, theme.secondaryText, eventOpacity);
    }
    for (const std::size_t point : times_.gaps) {
        const double x = canvas.left() + graphGapX(point, pointCount(), canvas.width());
        add({x, canvas.top()}, {x, canvas.bottom()}, 0, theme.secondaryText, gapOpacity);
    }
    return rules;
}

void StableLineGraph::paintCursor(QPainter& painter, const CrestTheme& theme) const {
    // The parts at the edges must not outlive the next painting of the canvas.
    painter.setClipRect(canvasPixels());
    const QRectF canvas = canvasRect();
    if (cursor_) {
        GraphCursor shown{graphX(*cursor_, pointCount(), canvas.width()), timeText(*cursor_), {}};
        for (const StableGraphSeries& series : series_) {
            if (isMeasured(series, *cursor_)) {
                const double value = safeGraphValue(series.values[*cursor_]);
                const QString name =
                    fittedLines(series.id, CrestFonts::current().caption, widestName, 1).value(0);
                shown.values.push_back({name, percent_(value), series.color.in(theme),
                                        graphY(value, canvas.height())});
            }
        }
        paintGraphCursor(painter, canvas, shown, theme);
    }
    if (hasFocus() && hasRing_) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(theme.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(canvasPixels()).adjusted(1, 1, -1, -1), 4, 4);
    }
}

void StableLineGraph::paintLonePoints(QImage& part, const QRectF& canvas, double ratio,
                                      const StableGraphSeries& series,
                                      const std::vector<std::size_t>& points,
                                      const CrestTheme& theme) {
    const double radius = lonePointSize * ratio / 2;
    QPainter painter(&part);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(series.color.in(theme));
    for (const std::size_t point : points) {
        // Inside the edge of the canvas, which would otherwise cut the dot in half.
        const double x = std::max(
            std::min(graphX(point, series.values.size(), canvas.width()), canvas.width() - radius),
            radius);
        const double left = canvas.left() + x - radius;
        if (left < part.width() && left + 2 * radius > 0) {
            const double y = graphY(series.values[point], canvas.height());
            painter.drawEllipse(canvas.topLeft() + QPointF(x, y), radius, radius);
        }
    }
}

}  // namespace tallowcrest
