#pragma once

#include <vector>

#include <QImage>
#include <QPoint>
#include <QPointF>
#include <QRect>

#include "presentation/widgets/graph_geometry.h"

namespace tallowcrest {

/// Draws a smooth line of `color` into `image`, which has the format RGB32. `origin` is the pixel
/// of the columns' (0, 0); whatever lies outside the image is clipped.
///
/// A graph's line has one height per column of pixels, which makes this several times cheaper than
/// stroking or filling a general shape. Otherwise the line of a full graph would be the most
/// expensive part of the page.
void drawGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                      QRgb color);

/// Lays `color` at `opacity` over what lies between the line and the row `bottom` of the image,
/// which is left out. The edge along the line is not smooth: the line is drawn over it.
void layBelowGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                          int bottom, QRgb color, double opacity);

/// A straight rule along the longer side of `place`.
struct GraphRule {
    QRect place;
    /// The length of each dash and of the gap behind it; 0 for a rule without gaps.
    int dash = 0;
    QRgb color = 0;
    double opacity = 1;
};

/// The whole pixels, so that it is sharp, of a rule `thickness` thick along the level or upright
/// line from `start` to `end`, which lies in its middle. It is never thinner than one pixel.
QRect sharpRule(QPointF start, QPointF end, double thickness);

/// Lays `rule` over what the image, of the format RGB32, shows. `origin` is the pixel that the
/// rule's own (0, 0) falls on; what lies outside the image is left out.
void layGraphRule(QImage& image, const GraphRule& rule, QPoint origin);

}  // namespace tallowcrest
