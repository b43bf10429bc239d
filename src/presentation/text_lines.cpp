#include "presentation/text_lines.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <QTextOption>

namespace tallowcrest {
namespace {

// More than any label of this application can show.
constexpr qsizetype longestMeasured = 1000;

QString measurable(const QString& text, Qt::TextElideMode elideMode) {
    if (text.size() <= longestMeasured) {
        return text;
    }
    if (elideMode == Qt::ElideMiddle) {
        return text.left(longestMeasured / 2) + QChar(u'…') + text.right(longestMeasured / 2);
    }
    return text.left(longestMeasured) + QChar(u'…');
}

}  // namespace

QStringList fittedLines(const QString& text, const QFont& font, int width, int maximumLines,
                        Qt::TextElideMode elideMode) {
    if (text.isEmpty() || width <= 0) {
        return {};
    }
    const QFontMetrics metrics(font);
    QString shown = measurable(text, elideMode);
    if (maximumLines <= 1) {
        return {metrics.elidedText(shown.replace(u'\n', u' '), elideMode, width)};
    }

    shown.replace(u'\n', QChar(QChar::LineSeparator));
    QTextLayout layout(shown, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const int start = line.textStart();
        if (lines.size() == maximumLines - 1) {
            // The last line takes all that is left and is cut where the room ends.
            const QString rest = shown.mid(start).replace(QChar::LineSeparator, u' ').trimmed();
            lines.append(metrics.elidedText(rest, Qt::ElideRight, width));
            break;
        }
        lines.append(shown.mid(start, line.textLength()).remove(QChar::LineSeparator).trimmed());
    }
    layout.endLayout();
    return lines;
}

}  // namespace tallowcrest
