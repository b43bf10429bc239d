#include "presentation/widgets/text_lines.h"

#include <algorithm>
#include <optional>

#include <QFontMetrics>
#include <QTextLayout>
#include <QTextOption>

#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int widestTipLine = 360;

QString itemSeparator() {
    return u" · "_s;
}

QString measurable(const QString& text, int lines, Qt::TextElideMode elideMode) {
    // More than any label can show.
    const qsizetype longestMeasured = std::max(1000, lines * 100);
    if (text.size() <= longestMeasured) {
        return text;
    }
    if (elideMode == Qt::ElideMiddle) {
        return text.left(longestMeasured / 2) + QChar(u'…') + text.right(longestMeasured / 2);
    }
    return text.left(longestMeasured) + QChar(u'…');
}

/// `text` with a no-break space between each number and the word after it.
QString withNumbersGlued(QString text) {
    for (qsizetype i = 1; i + 1 < text.size(); ++i) {
        if (text.at(i) == u' ' && text.at(i - 1).isDigit() && text.at(i + 1).isLetter()) {
            text[i] = QChar::Nbsp;
        }
    }
    return text;
}

QStringList wrappedLines(const QString& text, const QFont& font, int width, int maximumLines) {
    QTextLayout layout(withNumbersGlued(text), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const int start = line.textStart();
        if (lines.size() == maximumLines - 1) {
            // The last line takes the rest and is elided.
            const QString rest = text.mid(start).replace(QChar::LineSeparator, u' ').trimmed();
            lines.append(QFontMetrics(font).elidedText(rest, Qt::ElideRight, width));
            break;
        }
        lines.append(text.mid(start, line.textLength()).remove(QChar::LineSeparator).trimmed());
    }
    layout.endLayout();
    return lines;
}

/// The lines of a list that breaks between its items, and within an item only if that is longer
/// than a line.
QStringList linesOfItems(const QString& text, const QFont& font, int width, int maximumLines) {
    const QString separator = itemSeparator();
    const QFontMetrics metrics(font);
    QStringList lines;
    std::optional<QString> line;
    for (const QString& item : text.split(separator)) {
        const QString longer = line ? *line + separator + item : item;
        if (metrics.horizontalAdvance(longer) <= width) {
            line = longer;
            continue;
        }
        // To measure a text takes most of the time. An item that stands alone has been measured.
        const bool isTooWide = !line || metrics.horizontalAdvance(item) > width;
        if (line) {
            lines.append(*line);
        }
        line = item;
        if (isTooWide) {
            // One line too many shows the caller that the list does not fit.
            lines.append(wrappedLines(item, font, width, maximumLines + 1));
            line.reset();
        }
        if (lines.size() > maximumLines) {
            return lines;
        }
    }
    if (line) {
        lines.append(*line);
    }
    return lines;
}

}  // namespace

QStringList fittedLines(const QString& text, const QFont& font, int width, int maximumLines,
                        Qt::TextElideMode elideMode) {
    if (text.isEmpty() || width <= 0) {
        return {};
    }
    QString shown = measurable(text, maximumLines, elideMode);
    if (maximumLines <= 1) {
        return {QFontMetrics(font).elidedText(shown.replace(u'\n', u' '), elideMode, width)};
    }

    shown.replace(u'\n', QChar(QChar::LineSeparator));
    if (!shown.contains(QChar::LineSeparator) && shown.contains(itemSeparator())) {
        const QStringList lines = linesOfItems(shown, font, width, maximumLines);
        if (lines.size() <= maximumLines) {
            return lines;
        }
    }
    return wrappedLines(shown, font, width, maximumLines);
}

QString toolTipText(const QString& plain, int mostLines) {
    QStringList lines;
    for (const QString& line :
         fittedLines(plain, CrestFonts::current().body, widestTipLine, mostLines)) {
        lines.append(line.toHtmlEscaped());
    }
    if (lines.isEmpty()) {
        return {};
    }
    // Qt would wrap plain text into a narrow column, and would interpret any text that looks like
    // markup. So the text is always given as escaped markup with its own line breaks.
    return u"<div style='white-space:pre'>%1</div>"_s.arg(lines.join(u"<br>"_s));
}

}  // namespace tallowcrest
