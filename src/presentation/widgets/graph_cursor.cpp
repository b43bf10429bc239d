#include "presentation/widgets/graph_cursor.h"

#include <algorithm>

#include <QFontMetrics>
#include <QPainter>

#include "presentation/widgets/figure_text.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

constexpr double dotRadius = 3.5;
constexpr double boxRadius = 6;
constexpr int padding = spacing::unit;
constexpr int swatchSize = 6;

int widestLine(const GraphCursor& cursor, const QFontMetrics& metrics) {
    int width = metrics.horizontalAdvance(cursor.title);
    for (const GraphCursor::Value& value : cursor.values) {
        width = std::max(width, swatchSize + padding + metrics.horizontalAdvance(value.name) +
                                    spacing::gap + metrics.horizontalAdvance(value.text));
    }
    return width;
}

void paintBox(QPainter& painter, const QRectF& canvas, const GraphCursor& cursor,
              const CrestTheme& theme) {
    const QFontMetrics metrics = painter.fontMetrics();
    const int lineHeight = metrics.lineSpacing();
    const int lines = 1 + static_cast<int>(cursor.values.size());
    const QSize size(widestLine(cursor, metrics) + 2 * padding, lines * lineHeight + padding);
    const double room = cursor.x > canvas.width() / 2 ? -padding - size.width() : padding;
    const QRect box(
        QPoint(qRound(canvas.left() + cursor.x + room), qRound(canvas.top()) + padding / 2), size);
    painter.setPen(QPen(theme.hairline, 1));
    painter.setBrush(theme.cardBackground);
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), boxRadius, boxRadius);

    QRect line(box.left() + padding, box.top() + padding / 2, size.width() - 2 * padding,
               lineHeight);
    painter.setPen(theme.secondaryText);
    painter.drawText(line.left(), textBaseline(metrics, line), cursor.title);
    for (const GraphCursor::Value& value : cursor.values) {
        line.translate(0, lineHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(value.color);
        painter.drawEllipse(QRectF(line.left(), line.center().y() - swatchSize / 2.0 + 0.5,
                                   swatchSize, swatchSize));
        painter.setPen(theme.secondaryText);
        painter.drawText(line.left() + swatchSize + padding, textBaseline(metrics, line),
                         value.name);
        drawFigure(painter, line, Qt::AlignRight, value.text, theme.text, theme.secondaryText);
    }
}

}  // namespace

void paintGraphCursor(QPainter& painter, const QRectF& canvas, const GraphCursor& cursor,
                      const CrestTheme& theme) {
    painter.setFont(CrestFonts::current().caption);
    painter.fillRect(QRectF(qRound(canvas.left() + cursor.x), canvas.top(), 1, canvas.height()),
                     theme.secondaryText);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.cardBackground, 1.5));
    for (const GraphCursor::Value& value : cursor.values) {
        painter.setBrush(value.color);
        painter.drawEllipse(canvas.topLeft() + QPointF(cursor.x, value.y), dotRadius, dotRadius);
    }
    paintBox(painter, canvas, cursor, theme);
}

}  // namespace tallowcrest
