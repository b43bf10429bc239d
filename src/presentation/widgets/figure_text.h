#pragma once

#include <QString>

class QColor;
class QFontMetrics;
class QPainter;
class QRect;

namespace tallowcrest {

/// The index of a figure's unit, including the space before it: 4 in "12.3 GB", 2 in "34%". The
/// size of `text` if it is not a single figure followed by a unit.
qsizetype unitStart(const QString& text);

/// The y of the baseline of a line centred vertically in `room`. Neighbouring texts all use this,
/// so that rounding cannot shift one of them by a pixel.
int textBaseline(const QFontMetrics& metrics, const QRect& room);

/// Draws `text` as one line in the painter's font, centred vertically in `room`: the figure in
/// `figureColor` and its unit in `unitColor`. `alignment` is left, right or horizontally centred.
void drawFigure(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text,
                const QColor& figureColor, const QColor& unitColor);

}  // namespace tallowcrest
