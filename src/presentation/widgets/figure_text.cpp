#include "presentation/widgets/figure_text.h"

#include <algorithm>
#include <array>

#include <QColor>
#include <QFontMetrics>
#include <QPainter>
#include <QStringView>

namespace tallowcrest {
namespace {

constexpr std::array<QStringView, 5> units{u"%", u"KB", u"MB", u"GB", u"TB"};

bool isPartOfNumber(QChar character) {
    // The separators of all locales: points, commas, apostrophes and all kinds of spaces.
    constexpr QStringView separators = u".,'’٫٬+-−";
    return character.isDigit() || character.isSpace() || separators.contains(character);
}

}  // namespace

qsizetype unitStart(const QString& text) {
    const QStringView whole(text);
    for (const QStringView unit : units) {
        if (!whole.endsWith(unit)) {
            continue;
        }
        QStringView number = whole.chopped(unit.size());
        while (!number.isEmpty() && number.back().isSpace()) {
            number.chop(1);
        }
        const bool isNumber = std::all_of(number.begin(), number.end(), isPartOfNumber) &&
                              std::any_of(number.begin(), number.end(),
                                          [](QChar character) { return character.isDigit(); });
        return isNumber ? number.size() : text.size();
    }
    return text.size();
}

int textBaseline(const QFontMetrics& metrics, const QRect& room) {
    return room.top() + (room.height() - metrics.height() + 1) / 2 + metrics.ascent();
}

void drawFigure(QPainter& painter, const QRect& room, Qt::Alignment alignment, const QString& text,
                const QColor& figureColor, const QColor& unitColor) {
    const QFontMetrics metrics = painter.fontMetrics();
    const qsizetype start = unitStart(text);
    const QString figure = text.left(start);
    const QString unit = text.mid(start);
    const int figureWidth = metrics.horizontalAdvance(figure);
    const int spare = room.width() - figureWidth - metrics.horizontalAdvance(unit);
    int left = room.left();
    if ((alignment & Qt::AlignRight) != 0) {
        left += spare;
    } else if ((alignment & Qt::AlignHCenter) != 0) {
        left += spare / 2;
    }
    const int baseline = textBaseline(metrics, room);
    painter.setPen(figureColor);
    painter.drawText(left, baseline, figure);
    if (!unit.isEmpty()) {
        painter.setPen(unitColor);
        painter.drawText(left + figureWidth, baseline, unit);
    }
}

}  // namespace tallowcrest
