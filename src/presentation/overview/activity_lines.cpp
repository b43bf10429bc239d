#include "presentation/overview/activity_lines.h"

#include <algorithm>

#include <QDateTime>
#include <QLocale>

#include "core/control_characters.h"
#include "presentation/dashboard_text.h"

namespace tallowcrest {
namespace {

QDateTime localTime(Date date) {
    // What the store held may lie anywhere; this far from today every calendar has an answer.
    constexpr double furthest = 1e11;
    const double seconds = std::clamp(date.unixSeconds(), -furthest, furthest);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(seconds * 1000.0));
}

QString timeText(Date date, Date now) {
    const QDateTime time = localTime(date);
    return time.date() == localDay(now) ? QLocale().toString(time.time(), QLocale::ShortFormat)
                                        : QLocale().toString(time, QLocale::ShortFormat);
}

QString plainText(const std::string& utf8) {
    return dashboard_text::text(replacingControlCharacters(utf8, " "));
}

}  // namespace

QDate localDay(Date date) {
    return localTime(date).date();
}

std::vector<ActivityLine> activityLines(const std::vector<ActivityEvent>& events, std::size_t limit,
                                        Date now) {
    std::vector<ActivityLine> lines;
    lines.reserve(std::min(events.size(), limit));
    for (const ActivityEvent& event : events) {
        if (lines.size() == limit) {
            break;
        }
        lines.push_back({event.title == "Warning", plainText(event.title), plainText(event.detail),
                         timeText(event.date, now)});
    }
    return lines;
}

}  // namespace tallowcrest
