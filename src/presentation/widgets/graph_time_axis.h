#pragma once

#include <functional>
#include <vector>

#include <QString>

class QPainter;
class QPointF;

namespace tallowcrest {

struct CrestTheme;

/// The formats of times on a graph, for a reader at the moment `now`. Both count in seconds from
/// the start of a minute.
struct GraphTimeFormats {
    using Format = std::function<QString(double seconds, double now)>;

    Format inMinutes;
    Format inSeconds;
};

/// The time of one point, below a graph's canvas.
struct GraphTimeLabel {
    double seconds = 0;
    bool inSeconds = false;  ///< which of the formats it has
    QString text;
    double width = 0;
    double x = 0;     ///< of the point, from the left edge of the canvas
    double left = 0;  ///< of the text
};

/// The labels of some of the points measured at `seconds`, oldest first, as many as have room below
/// a canvas `width` wide. Those that occur in `shown` are neither formatted nor measured again.
/// Main thread.
std::vector<GraphTimeLabel> graphTimeLabels(const std::vector<double>& seconds, double width,
                                            const GraphTimeFormats& formats,
                                            const std::vector<GraphTimeLabel>& shown = {});

/// The height of the labels, with the ticks at their points.
int graphTimeLabelHeight();

/// Paints the labels below `corner`, the left end of the canvas. Main thread.
void paintGraphTimeLabels(QPainter& painter, QPointF corner,
                          const std::vector<GraphTimeLabel>& labels, const CrestTheme& theme);

}  // namespace tallowcrest
