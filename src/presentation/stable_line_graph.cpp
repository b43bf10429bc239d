#include "presentation/stable_line_graph.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include "presentation/graph_geometry.h"
#include "presentation/text_lines.h"

namespace tallowcrest {
namespace {

constexpr float gridOpacity = 0.14F;
constexpr float thresholdOpacity = 0.55F;
constexpr float eventOpacity = 0.35F;
constexpr float areaOpacity = 0.1F;
constexpr double ruleWidth = 1;
constexpr double lineWidth = 2;
constexpr int swatchWidth = 12;
constexpr int widestLegendName = 160;

QColor faded(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

QPen dashedPen(const QColor& color) {
    QPen pen(color, ruleWidth);
    pen.setCapStyle(Qt::FlatCap);
    pen.setDashPattern({4, 4});
    return pen;
}

QPointF placed(const GraphPoint& point, const QPointF& origin) {
    return origin + QPointF(point.x, point.y);
}

/// A straight rule is sharp when it fills whole pixels; this is the place nearest to `position`.
double crisp(double position) {
    return std::round(position - 0.5) + 0.5;
}

}  // namespace

bool operator==(const StableGraphSeries& a, const StableGraphSeries& b) {
    return a.id == b.id && a.color == b.color && a.fillsArea == b.fillsArea &&
           std::equal(a.values.begin(), a.values.end(), b.values.begin(), b.values.end(),
                      [](double first, double second) {
                          return safeGraphValue(first) == safeGraphValue(second);
                      });
}

StableLineGraph::StableLineGraph(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    setAccessibleName(QStringLiteral("Performance graph"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    measureLabels();
}

void StableLineGraph::setSeries(std::vector<StableGraphSeries> series) {
    if (series == series_) {
        return;
    }
    series_ = std::move(series);
    rebuildShapes();
    setAccessibleDescription(accessibleValue());
    update();
}

void StableLineGraph::setWarningThreshold(std::optional<double> threshold) {
    if (threshold != warningThreshold_) {
        warningThreshold_ = threshold;
        update();
    }
}

void StableLineGraph::setEventFractions(std::vector<double> fractions) {
    eventFractions_ = std::move(fractions);
    std::vector<double> positions = graphEvents(eventFractions_, canvasRect().width());
    if (positions != eventPositions_) {
        eventPositions_ = std::move(positions);
        update();
    }
}

void StableLineGraph::setLegendVisible(bool visible) {
    if (visible != legendVisible_) {
        legendVisible_ = visible;
        rebuildShapes();
        update();
    }
}

QRectF StableLineGraph::canvasRect() const {
    const int top = legendVisible_ ? captionHeight_ + spacing::unit : captionHeight_ / 2 + 1;
    const int bottom = captionHeight_ / 2 + 1;
    const int right = scaleWidth_ + spacing::unit;
    return {1.0, static_cast<double>(top), std::max(1.0, width() - right - 1.0),
            std::max(1.0, static_cast<double>(height() - top - bottom))};
}

QSize StableLineGraph::sizeHint() const {
    return {480, 220};
}

QSize StableLineGraph::minimumSizeHint() const {
    return {160, 120};
}

QString StableLineGraph::accessibleValue() const {
    QStringList parts;
    for (const StableGraphSeries& series : series_) {
        if (const auto text = graphSeriesText(series.id.toStdString(), series.values)) {
            parts.append(QString::fromStdString(*text));
        }
    }
    return parts.join(QStringLiteral(", "));
}

void StableLineGraph::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        measureLabels();
        rebuildShapes();
    }
    QWidget::changeEvent(event);
}

void StableLineGraph::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    rebuildShapes();
}

void StableLineGraph::measureLabels() {
    const QFont& font = CrestFonts::current().caption;
    scaleWidth_ = figuresWidth(font, QStringLiteral("100%"));
    captionHeight_ = QFontMetrics(font).lineSpacing();
}

void StableLineGraph::rebuildShapes() {
    const QRectF canvas = canvasRect();
    const QPointF origin = canvas.topLeft();
    shapes_.resize(series_.size());
    for (std::size_t i = 0; i < series_.size(); ++i) {
        const auto line = graphLine(series_[i].values, canvas.width(), canvas.height());
        Shape& shape = shapes_[i];
        shape.segments.clear();
        shape.area.clear();
        if (line.size() == 1) {
            shape.segments.append({placed(line.front(), origin), placed(line.front(), origin)});
        }
        for (std::size_t point = 1; point < line.size(); ++point) {
            shape.segments.append({placed(line[point - 1], origin), placed(line[point], origin)});
        }
        if (series_[i].fillsArea) {
            for (const GraphPoint& point : graphArea(line, canvas.height())) {
                shape.area.append(placed(point, origin));
            }
        }
    }
    eventPositions_ = graphEvents(eventFractions_, canvas.width());
}

void StableLineGraph::paintEvent(QPaintEvent*) {
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    painter.setFont(CrestFonts::current().caption);
    if (legendVisible_) {
        paintLegend(painter, theme);
    }
    paintScale(painter, theme);
    paintRules(painter, theme);
    paintSeries(painter, theme);
}

void StableLineGraph::paintLegend(QPainter& painter, const CrestTheme& theme) const {
    int left = 1;
    for (const StableGraphSeries& series : series_) {
        if (left + swatchWidth >= width()) {
            return;
        }
        const int room = std::min(widestLegendName, width() - left - swatchWidth - spacing::unit);
        const QString name = fittedLines(series.id, painter.font(), room, 1).value(0);
        const double middle = captionHeight_ / 2.0;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(series.color.in(theme));
        painter.drawRoundedRect(QRectF(left, middle - 2, swatchWidth, 4), 2, 2);
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
    for (const int percent : {0, 50, 100}) {
        const double middle = canvas.top() + graphY(percent, canvas.height());
        painter.drawText(QRectF(width() - scaleWidth_, middle - captionHeight_ / 2.0, scaleWidth_,
                                captionHeight_),
                         Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1%").arg(percent));
    }
}

void StableLineGraph::paintRules(QPainter& painter, const CrestTheme& theme) const {
    const QRectF canvas = canvasRect();
    painter.setRenderHint(QPainter::Antialiasing, false);

    const QColor grid = faded(theme.secondaryText, gridOpacity);
    for (const double height : graphGrid(canvas.height())) {
        const double y = crisp(canvas.top() + height) - ruleWidth / 2;
        painter.fillRect(QRectF(canvas.left(), y, canvas.width(), ruleWidth), grid);
    }
    if (const auto threshold = graphThreshold(warningThreshold_, canvas.height())) {
        const double y = crisp(canvas.top() + *threshold);
        painter.setPen(dashedPen(faded(theme.caution, thresholdOpacity)));
        painter.drawLine(QPointF(canvas.left(), y), QPointF(canvas.right(), y));
    }
    if (!eventPositions_.empty()) {
        painter.setPen(dashedPen(faded(theme.secondaryText, eventOpacity)));
        for (const double position : eventPositions_) {
            const double x = crisp(canvas.left() + position);
            painter.drawLine(QPointF(x, canvas.top()), QPointF(x, canvas.bottom()));
        }
    }
}

void StableLineGraph::paintSeries(QPainter& painter, const CrestTheme& theme) const {
    for (std::size_t i = 0; i < shapes_.size(); ++i) {
        const Shape& shape = shapes_[i];
        if (shape.segments.isEmpty()) {
            continue;
        }
        const QColor color = series_[i].color.in(theme);
        if (!shape.area.isEmpty()) {
            // The line lies on the area's upper edge, so smoothing that edge would not be seen.
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.setPen(Qt::NoPen);
            painter.setBrush(faded(color, areaOpacity));
            painter.drawPolygon(shape.area);
        }
        // Single segments take Qt's fast way for straight lines, at a fifth of the cost of stroking
        // one long path. Flat ends, as overlapping ones would show as beads along the line.
        painter.setRenderHint(QPainter::Antialiasing);
        if (shape.segments.size() == 1 && shape.segments.first().isNull()) {
            painter.setPen(QPen(color, lineWidth, Qt::SolidLine, Qt::RoundCap));
            painter.drawPoint(shape.segments.first().p1());
        } else {
            painter.setPen(QPen(color, lineWidth, Qt::SolidLine, Qt::FlatCap));
            painter.drawLines(shape.segments);
        }
    }
}

}  // namespace tallowcrest
