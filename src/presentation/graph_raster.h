#pragma once

#include <vector>

#include <QImage>
#include <QPoint>

#include "presentation/graph_geometry.h"

namespace tallowcrest {

/// Draws a smooth line of `color` into `image`, which has the format RGB32. `origin` is the pixel
/// that the columns' own (0, 0) falls on; what lies outside the image is left out.
///
/// A graph's line has one height per column of pixels. Knowing that makes it several times cheaper
/// than stroking or filling a general shape, and the line of a full graph was the dearest thing on
/// the page.
void drawGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                      QRgb color);

/// Fills what lies between the line and the row `bottom` of the image, which is left out. The edge
/// along the line is not smooth: the line is drawn over it.
void fillBelowGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                           int bottom, QRgb color);

}  // namespace tallowcrest
