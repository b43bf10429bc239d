#include "presentation/words/process_words.h"

#include "presentation/words/dashboard_text.h"
#include "sampling/process_details.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::process_words {

using dashboard_text::text;

namespace {

QStringList ownerAndArgument(const ProcessDetail* detail) {
    QStringList words;
    if (detail != nullptr) {
        words = {text(detail->owner), text(detail->argument)};
        words.removeAll(QString());
    }
    return words;
}

}  // namespace

QString separator() {
    return u" · "_s;
}

QString note(const ProcessSample& row, const ProcessDetail* detail) {
    return (QStringList(QString::number(row.pid)) + ownerAndArgument(detail)).join(separator());
}

QStringList spoken(const ProcessSample& row, const ProcessDetail* detail) {
    return QStringList(u"PID %1"_s.arg(row.pid)) + ownerAndArgument(detail);
}

QString commandLine(const ProcessSample& row, const ProcessDetail* detail) {
    return text(detail != nullptr && !detail->commandLine.empty() ? detail->commandLine
                                                                  : row.command);
}

QString underReview(const ProcessSample& row) {
    return u"Under review: "_s + text(row.displayName());
}

QString toolTip(const ProcessSample& row, const ProcessDetail* detail) {
    QString tip = u"PID %1"_s.arg(row.pid);
    if (detail != nullptr && !detail->owner.empty()) {
        tip += separator() + text(detail->owner);
    }
    const QString command = text(row.command);
    const QString whole = commandLine(row, detail);
    tip += u'\n' + command;
    return whole == command ? tip : tip + u'\n' + whole;
}

}  // namespace tallowcrest::process_words
