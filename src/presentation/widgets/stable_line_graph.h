#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include <QImage>
#include <QString>
#include <QStringList>

#include "presentation/widgets/graph_raster.h"
#include "presentation/widgets/graph_time_axis.h"
#include "presentation/widgets/painted_figure.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// One line of a `StableLineGraph`.
struct StableGraphSeries {
    /// The name of the line.
    QString id;
    ThemeColor color;
    /// In percent, oldest first. Drawn clamped to 0 to 100; a value that is not finite as 0.
    std::vector<double> values;
    bool fillsArea = false;
    /// The indexes of values that were not measured, ascending. The line is interrupted there,
    /// and a value between two such ones is a dot. None for a series with an area.
    std::vector<std::size_t> missing = {};
    /// What the tool tip of the legend adds to the name; empty for nothing.
    QString note = {};
};

/// Whether both would be drawn the same.
bool operator==(const StableGraphSeries& a, const StableGraphSeries& b);

/// When the points of a `StableLineGraph` were measured. Empty if that is not known.
struct GraphTimes {
    /// One for each point, counted from the start of a minute, oldest first.
    std::vector<double> seconds;
    /// The indexes of the points before which nothing was measured for a while, ascending, without
    /// the first point. The lines cross such a gap; a mark shows it.
    std::vector<std::size_t> gaps;

    bool operator==(const GraphTimes&) const = default;
};

/// The words of an event of a `StableLineGraph`.
struct GraphEventLabel {
    QString title;
    QString message;
    double seconds = 0;  ///< when it happened, counted like `GraphTimes::seconds`
};

/// The formats of a `StableLineGraph`.
struct GraphFormats {
    std::function<QString(double percent)> percent;
    GraphTimeFormats times;
};

/// A graph of percentages over time, without animation. Paints from back to front the background of
/// a card, the grid, the threshold, the events and gaps, and each series with its area and its
/// line, each but the first in dashes of its own. Below are the times of some points.
///
/// The pointer, or with the focus the arrow keys, Home and End, move a cursor from point to point,
/// whose values and time are shown in a box and are the accessible description. Escape removes it.
/// Main thread.
class StableLineGraph : public PaintedFigure {
    Q_OBJECT

public:
    explicit StableLineGraph(GraphFormats formats, QWidget* parent = nullptr);

    /// Like the next two, causes no repaint for equal data.
    void setSeries(std::vector<StableGraphSeries> series, GraphTimes times = {});
    /// In percent; absent for no threshold line.
    void setWarningThreshold(std::optional<double> threshold);
    /// Positions from 0 to 1 along the time axis; one that is not finite is omitted. `labels` has
    /// one for each position, or is empty.
    void setEventFractions(std::vector<double> fractions, std::vector<GraphEventLabel> labels = {});

    /// Where the lines are drawn, in the widget's coordinates.
    QRectF canvasRect() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// For example "CPU 42 percent, Memory 61 percent". Empty without values.
    QString accessibleValue() const override;

protected:
    void measure() override;
    void arrange() override;
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static bool isMeasured(const StableGraphSeries& series, std::size_t point);
    std::size_t pointCount() const;
    /// To the second; empty if it is not known.
    QString timeText(std::size_t point) const;
    QString gapText(std::size_t point) const;
    QString eventText(const GraphEventLabel& label) const;
    /// The events and gaps at most `reach` from `x` on the canvas.
    QStringList marksAt(double x, double reach) const;
    QStringList legendNotes() const;
    void describeAll();
    QString cursorText(std::size_t point) const;
    void moveCursor(std::optional<std::size_t> point);
    /// Where the cursor goes when the points become `count` points of `times`.
    std::optional<std::size_t> cursorAmong(const GraphTimes& times, std::size_t count) const;
    /// Moves the cursor to `x` in the widget, or removes one that follows the pointer.
    void followPointer(std::optional<double> x);
    bool usesKey(const QKeyEvent& event) const;

    /// The pixels covered by the canvas, the lines at its edges and the focus ring.
    QRect canvasPixels() const;
    /// Those and the times below.
    QRect plotPixels() const;
    void paintLegend(QPainter& painter, const CrestTheme& theme) const;
    void paintScale(QPainter& painter, const CrestTheme& theme) const;
    void paintCanvas(QPainter& painter, const CrestTheme& theme);
    void paintCursor(QPainter& painter, const CrestTheme& theme) const;
    /// The layers below the series, in physical pixels.
    std::vector<GraphRule> canvasRules(const QRectF& canvas, double ratio,
                                       const CrestTheme& theme) const;
    static void paintLonePoints(QImage& part, const QRectF& canvas, double ratio,
                                const StableGraphSeries& series,
                                const std::vector<std::size_t>& points, const CrestTheme& theme);

    std::function<QString(double)> percent_;
    std::array<QString, 3> scale_;  ///< the texts of 0, 50 and 100 percent
    GraphTimeFormats timeFormats_;
    std::vector<StableGraphSeries> series_;
    std::vector<std::vector<std::size_t>> lonePoints_;  ///< of each series
    GraphTimes times_;
    std::vector<GraphTimeLabel> timeLabels_;
    /// The gaps that the description names, from and to, and the words for them.
    std::vector<std::pair<double, double>> spokenGaps_;
    QString gapTexts_;
    std::optional<double> warningThreshold_;
    std::vector<double> eventFractions_;
    std::vector<GraphEventLabel> eventLabels_;
    std::vector<double> eventPositions_;
    std::optional<std::size_t> cursor_;
    std::optional<double> pointerX_;  ///< set while the cursor follows the pointer
    bool hasRing_ = false;
    int scaleWidth_ = 0;
    int captionHeight_ = 0;
    int timeLabelHeight_ = 0;
    QImage part_;  ///< buffer in which the parts of the canvas are painted
};

}  // namespace tallowcrest
