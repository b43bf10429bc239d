#include "presentation/widgets/graph_time_axis.h"

#include <algorithm>
#include <utility>

#include <QFontMetrics>
#include <QPainter>
#include <QPointF>

#include "presentation/widgets/graph_geometry.h"
#include "presentation/widgets/graph_ticks.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr int tickLength = spacing::unit / 2;
constexpr double roomPerLabel = 15.0 * spacing::unit;
constexpr double mostLabels = 6;

GraphTimeLabel newLabel(double seconds, bool inSeconds, double now,
                        const GraphTimeFormats& formats) {
    GraphTimeLabel label;
    label.seconds = seconds;
    label.inSeconds = inSeconds;
    label.text = (inSeconds ? formats.inSeconds : formats.inMinutes)(seconds, now);
    label.width = QFontMetrics(CrestFonts::current().caption).horizontalAdvance(label.text);
    return label;
}

}  // namespace

std::vector<GraphTimeLabel> graphTimeLabels(const std::vector<double>& seconds, double width,
                                            const GraphTimeFormats& formats,
                                            const std::vector<GraphTimeLabel>& shown) {
    const auto most = static_cast<std::size_t>(std::clamp(width / roomPerLabel, 1.0, mostLabels));
    const GraphTicks ticks = graphTicks(seconds, most);
    std::vector<GraphTimeLabel> labels;
    std::vector<double> centers;
    std::vector<double> widths;
    for (const std::size_t point : ticks.points) {
        const auto known = std::find_if(shown.begin(), shown.end(), [&](const auto& each) {
            return each.seconds == seconds[point] && each.inSeconds == ticks.inSeconds;
        });
        labels.push_back(known != shown.end()
                             ? *known
                             : newLabel(seconds[point], ticks.inSeconds, seconds.back(), formats));
        labels.back().x = graphX(point, seconds.size(), width);
        centers.push_back(labels.back().x);
        widths.push_back(labels.back().width);
    }
    const auto places = graphLabelPlaces(centers, widths, width, spacing::gap);
    std::vector<GraphTimeLabel> placed;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (places[i]) {
            labels[i].left = *places[i];
            placed.push_back(std::move(labels[i]));
        }
    }
    return placed;
}

int graphTimeLabelHeight() {
    return tickLength + QFontMetrics(CrestFonts::current().caption).lineSpacing();
}

void paintGraphTimeLabels(QPainter& painter, QPointF corner,
                          const std::vector<GraphTimeLabel>& labels, const CrestTheme& theme) {
    painter.setFont(CrestFonts::current().caption);
    painter.setPen(theme.secondaryText);
    const double baseline = corner.y() + tickLength + painter.fontMetrics().ascent();
    for (const GraphTimeLabel& label : labels) {
        painter.fillRect(QRectF(qRound(corner.x() + label.x), corner.y(), 1, tickLength),
                         theme.secondaryText);
        painter.drawText(QPointF(corner.x() + label.left, baseline), label.text);
    }
}

}  // namespace tallowcrest
