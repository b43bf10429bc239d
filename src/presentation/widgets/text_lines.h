#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

namespace tallowcrest {

/// `text` broken into at most `maximumLines` lines of at most `width` device independent pixels;
/// the last one is elided if the text is longer. Apart from an ellipsis every line is a part of
/// `text`.
///
/// Lines preferably break between the items of a list ("a · b"), dropping the separator, and keep a
/// number together with the word after it, which is mostly its unit. Only the start of a very long
/// text is measured, so a name of many thousand characters costs no more than a screenful.
QStringList fittedLines(const QString& text, const QFont& font, int width, int maximumLines,
                        Qt::TextElideMode elideMode = Qt::ElideRight);

/// `plain` as the text of a tool tip, without markup: wrapped into lines of readable width, and
/// elided if it needs more lines. Main thread.
QString toolTipText(const QString& plain, int mostLines = 12);

}  // namespace tallowcrest
