#pragma once

#include <optional>
#include <vector>

#include <QImage>
#include <QString>

#include "presentation/widgets/graph_raster.h"
#include "presentation/widgets/painted_figure.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// One line of a `StableLineGraph`.
struct StableGraphSeries {
    /// The name of the line.
    QString id;
    ThemeColor color;
    /// In percent, oldest first. What is not finite is drawn as 0, the rest within 0 to 100.
    std::vector<double> values;
    bool fillsArea = false;
};

/// True when both would be drawn alike.
bool operator==(const StableGraphSeries& a, const StableGraphSeries& b);

/// Percentages over time, drawn from plain values. Nothing is animated, so a new sample moves the
/// line and nothing else. It paints the ground of a card, on it the grid, the threshold and the
/// events, and over them each series in its turn: its area, then its line. Main thread.
class StableLineGraph : public PaintedFigure {
    Q_OBJECT

public:
    explicit StableLineGraph(QWidget* parent = nullptr);

    /// Data equal to what is shown causes no repaint; so it is for the two below.
    void setSeries(std::vector<StableGraphSeries> series);
    /// In percent; absent for no line.
    void setWarningThreshold(std::optional<double> threshold);
    /// Each a position from 0 to 1 along the time axis; what is not finite is left out.
    void setEventFractions(std::vector<double> fractions);
    /// The names of the series above the canvas, on at first.
    void setLegendVisible(bool visible);

    /// Where the lines are drawn, in the widget's coordinates.
    QRectF canvasRect() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// For example "CPU 42 percent, Memory 61 percent". Empty without values.
    QString accessibleValue() const override;

protected:
    void measure() override;
    void arrange() override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The whole pixels that the canvas and the lines at its edges touch.
    QRect canvasPixels() const;
    void paintLegend(QPainter& painter, const CrestTheme& theme) const;
    void paintScale(QPainter& painter, const CrestTheme& theme) const;
    void paintCanvas(QPainter& painter, const CrestTheme& theme);
    /// What lies below the series, in pixels of the screen.
    std::vector<GraphRule> canvasRules(const QRectF& canvas, double ratio,
                                       const CrestTheme& theme) const;
    static void paintLonePoint(QImage& part, const QRectF& canvas, double ratio,
                               const StableGraphSeries& series, const CrestTheme& theme);

    std::vector<StableGraphSeries> series_;
    std::optional<double> warningThreshold_;
    std::vector<double> eventFractions_;
    bool legendVisible_ = true;
    std::vector<double> eventPositions_;
    int scaleWidth_ = 0;
    int captionHeight_ = 0;
    QImage part_;  ///< where each part of the canvas is painted in its turn
};

}  // namespace tallowcrest
