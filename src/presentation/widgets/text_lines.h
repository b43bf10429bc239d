#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

namespace tallowcrest {

/// `text` in at most `maximumLines` lines that each fit into `width` device independent pixels;
/// what does not fit ends in an ellipsis. Every line is a piece of `text`.
///
/// Where the lines allow it, they break between the items of a list ("a · b"), whose separator then
/// goes; and a number stays with the word behind it, which most often is its unit. Only the
/// beginning of a very long text is ever measured, so a name of many thousand characters costs no
/// more than a screenful.
QStringList fittedLines(const QString& text, const QFont& font, int width, int maximumLines,
                        Qt::TextElideMode elideMode = Qt::ElideRight);

}  // namespace tallowcrest
