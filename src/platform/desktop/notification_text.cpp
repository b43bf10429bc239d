#include "platform/desktop/notification_text.h"

#include <QChar>
#include <QTextBoundaryFinder>

#include "core/text.h"

namespace tallowcrest {
namespace {

/// The largest length of at most `limit` units that does not split a grapheme. A grapheme longer
/// than `limit` is split.
qsizetype wholeCharacters(const QString& text, qsizetype limit) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(limit);
    if (finder.isAtBoundary()) {
        return limit;
    }
    if (const qsizetype boundary = finder.toPreviousBoundary(); boundary > 0) {
        return boundary;
    }
    return text.at(limit).isLowSurrogate() ? limit - 1 : limit;
}

}  // namespace

QString notificationText(const std::string& text, qsizetype limit) {
    QString shown = QString::fromStdString(replacingControlCharacters(text, "?"));
    if (shown.size() > limit) {
        shown.truncate(wholeCharacters(shown, limit - 1));
        shown.append(QChar(0x2026));
    }
    return shown;
}

QString asNotificationMarkup(const QString& text) {
    return text.toHtmlEscaped();
}

}  // namespace tallowcrest
