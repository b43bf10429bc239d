#include "presentation/words/dashboard_text.h"

#include <algorithm>
#include <cmath>

#include <QDateTime>
#include <QLocale>

#include "core/control_characters.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::dashboard_text {
namespace {

constexpr double megabytesPerGigabyte = 1024.0;

/// What is not finite counts as 0.
QString decimal(double value, int places) {
    return QLocale().toString(std::isfinite(value) ? value : 0.0, 'f', places);
}

QString oneDecimal(double value) {
    return decimal(value, 1);
}

/// The short time of a locale has no seconds, and the long one names the time zone as well: this
/// takes that out, with the blanks and brackets around it. Words of the locale stand in quotes.
QString withoutTimeZone(const QString& format) {
    QString kept;
    bool isQuoted = false;
    for (const QChar character : format) {
        isQuoted = isQuoted != (character == u'\'');
        if (isQuoted || (character != u't' && character != u'(' && character != u')' &&
                         character != u'[' && character != u']')) {
            kept.append(character);
        }
    }
    return kept.trimmed();
}

QDateTime localTime(Date date) {
    // What the store held may lie anywhere; this far from today every calendar has an answer.
    constexpr double furthest = 1e11;
    const double seconds = std::clamp(date.unixSeconds(), -furthest, furthest);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(seconds * 1000.0));
}

}  // namespace

QString text(std::string_view utf8) {
    return QString::fromStdString(replacingControlCharacters(utf8, "\uFFFD"));
}

int wholePercent(double percent) {
    constexpr double bound = 100'000.0;
    return std::isfinite(percent)
               ? static_cast<int>(std::lround(std::clamp(percent, -bound, bound)))
               : 0;
}

QString percentText(double percent) {
    return u"%1%"_s.arg(wholePercent(percent));
}

QString noFigure() {
    return u"–"_s;
}

QString gigabytes(double value) {
    return oneDecimal(value);
}

QString menuBarLabel(const SystemSnapshot& snapshot) {
    return u"CPU %1% MEM %2%"_s.arg(wholePercent(snapshot.cpuPercent))
        .arg(wholePercent(snapshot.memory.pressure));
}

QString panelLoad(const SystemSnapshot& snapshot) {
    return u"CPU %1% · Memory %2%"_s.arg(wholePercent(snapshot.cpuPercent))
        .arg(wholePercent(snapshot.memory.pressure));
}

QString panelTopGroup(const SystemSnapshot& snapshot) {
    if (snapshot.appImpacts.empty()) {
        return {};
    }
    const AppImpact& top = snapshot.appImpacts.front();
    return u"Top: %1 · %2 GB"_s.arg(text(top.name),
                                    oneDecimal(top.totalMemoryMB / megabytesPerGigabyte));
}

QString panelLatest(const Recommendation& recommendation) {
    return u"%1 · %2"_s.arg(text(recommendation.title), text(title(recommendation.severity)));
}

QString cpuDetail(double cpuPercent) {
    return u"%1% normalized across cores"_s.arg(wholePercent(cpuPercent));
}

QString memoryDetail(const MemorySnapshot& memory) {
    return u"%1 GB used of %2 GB"_s.arg(gigabytes(memory.usedGB), gigabytes(memory.totalGB));
}

QString reclaimableDetail(const MemorySnapshot& memory) {
    return u"%1 GB free · Wired %2 GB · Compressed %3 GB"_s.arg(
        gigabytes(memory.freeGB), gigabytes(memory.wiredGB), gigabytes(memory.compressedGB));
}

QString sessionNote(int seconds) {
    return u"Current session · last %1 seconds"_s.arg(seconds);
}

QString timelineCaption(int seconds) {
    return sessionNote(seconds) + u" · updates every 4 seconds"_s;
}

QString averageAndThreshold(double average, double threshold) {
    return u"Avg %1 · Warn %2"_s.arg(percentText(average), percentText(threshold));
}

QString memoryText(double megabytes) {
    // Judged as it would be shown, so that "1,024 MB" never stands beside "1.0 GB".
    if (!(std::round(megabytes) >= megabytesPerGigabyte)) {
        return u"%1 MB"_s.arg(decimal(megabytes, 0));
    }
    return u"%1 GB"_s.arg(oneDecimal(megabytes / megabytesPerGigabyte));
}

QString warnAt(double threshold) {
    return u"Warn at %1%"_s.arg(wholePercent(threshold));
}

QString sortStatus(int count, Date updated) {
    return u"Sorted by Impact ↓ · %1 visible processes · updated %2"_s.arg(count).arg(
        timeText(updated));
}

QString timeText(Date date) {
    const QLocale locale;
    return locale.toString(localTime(date).time(),
                           withoutTimeZone(locale.timeFormat(QLocale::LongFormat)));
}

QString shortTimeText(Date date, Date now) {
    const QDateTime time = localTime(date);
    return time.date() == localDay(now) ? QLocale().toString(time.time(), QLocale::ShortFormat)
                                        : QLocale().toString(time, QLocale::ShortFormat);
}

QDate localDay(Date date) {
    return localTime(date).date();
}

}  // namespace tallowcrest::dashboard_text
