#pragma once

#include <QString>

class QColor;
class QFontMetrics;
class QPainter;
class QRect;

namespace tallowcrest {

/// Where the unit of a figure begins, with the blank before it: at 4 in "12.3 GB", at 2 in "34%".
/// The size of `text` when that is not one figure with a unit behind it.
qsizetype unitStart(const QString& text);

/// Where the baseline of a line in the middle of `room` lies. All that stands side by side asks
/// this, or it would be off by the pixel that rounding makes.
int textBaseline(const QFontMetrics& metrics, const QRect& room);

/// Draws `text` as one line in the painter's font, in the middle of the height of `room`: the
/// figure in `figureColor` and its unit in `unitColor`. `alignment` is left, right or centred.
void drawFigure(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text,
                const QColor& figureColor, const QColor& unitColor);

}  // namespace tallowcrest
