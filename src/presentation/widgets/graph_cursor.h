#pragma once

#include <vector>

#include <QColor>
#include <QString>

class QPainter;
class QRectF;

namespace tallowcrest {

struct CrestTheme;

/// What a graph shows at its cursor.
struct GraphCursor {
    /// One series at the point under the cursor.
    struct Value {
        QString name;
        QString text;  ///< the value with its unit
        QColor color;
        double y = 0;  ///< from the top of the canvas
    };

    double x = 0;  ///< from the left edge of the canvas
    QString title;
    std::vector<Value> values;
};

/// Paints a line through the point, a dot on each series, and a box beside it with the title and
/// the values: on the side of the canvas that has more room. Main thread.
void paintGraphCursor(QPainter& painter, const QRectF& canvas, const GraphCursor& cursor,
                      const CrestTheme& theme);

}  // namespace tallowcrest
