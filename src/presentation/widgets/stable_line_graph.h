#pragma once

#include <array>
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
    /// In percent, oldest first. Drawn clamped to 0 to 100; a value that is not finite as 0.
    std::vector<double> values;
    bool fillsArea = false;
};

/// Whether both would be drawn the same.
bool operator==(const StableGraphSeries& a, const StableGraphSeries& b);

/// A graph of percentages over time, without animation. Paints from back to front the background of
/// a card, the grid, the threshold, the events, and each series with its area and its line. Main
/// thread.
class StableLineGraph : public PaintedFigure {
    Q_OBJECT

public:
    /// The texts of 0, 50 and 100 percent beside the canvas.
    using Scale = std::array<QString, 3>;

    explicit StableLineGraph(Scale scale, QWidget* parent = nullptr);

    /// Like the next two, causes no repaint for equal data.
    void setSeries(std::vector<StableGraphSeries> series);
    /// In percent; absent for no threshold line.
    void setWarningThreshold(std::optional<double> threshold);
    /// Positions from 0 to 1 along the time axis; one that is not finite is omitted.
    void setEventFractions(std::vector<double> fractions);

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
    /// The pixels covered by the canvas and the lines at its edges.
    QRect canvasPixels() const;
    void paintLegend(QPainter& painter, const CrestTheme& theme) const;
    void paintScale(QPainter& painter, const CrestTheme& theme) const;
    void paintCanvas(QPainter& painter, const CrestTheme& theme);
    /// The layers below the series, in physical pixels.
    std::vector<GraphRule> canvasRules(const QRectF& canvas, double ratio,
                                       const CrestTheme& theme) const;
    static void paintLonePoint(QImage& part, const QRectF& canvas, double ratio,
                               const StableGraphSeries& series, const CrestTheme& theme);

    Scale scale_;
    std::vector<StableGraphSeries> series_;
    std::optional<double> warningThreshold_;
    std::vector<double> eventFractions_;
    std::vector<double> eventPositions_;
    int scaleWidth_ = 0;
    int captionHeight_ = 0;
    QImage part_;  ///< buffer in which the parts of the canvas are painted
};

}  // namespace tallowcrest
