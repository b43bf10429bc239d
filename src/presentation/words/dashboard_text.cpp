#include "presentation/words/dashboard_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QHash>

#include "core/text.h"
#include "sampling/binary_units.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::dashboard_text {
namespace {

struct Formats {
    std::shared_ptr<const Locale> locale = std::make_shared<PlainLocale>();
    /// The texts of the last numbers: in a table most figures are those of the tick before.
    QHash<std::pair<double, int>, QString> decimals = {};
};

Formats& formats() {
    static Formats formats;
    return formats;
}

QString oneDecimal(double value) {
    return decimal(value, 1);
}

}  // namespace

void setLocale(std::shared_ptr<const Locale> locale) {
    formats() = {std::move(locale)};
}

QString text(std::string_view utf8) {
    return QString::fromStdString(replacingControlCharacters(utf8, "\uFFFD"));
}

int wholePercent(double percent) {
    constexpr double bound = 100'000.0;
    return std::isfinite(percent)
               ? static_cast<int>(std::lround(std::clamp(percent, -bound, bound)))
               : 0;
}

QString decimal(double value, int places) {
    constexpr qsizetype mostKept = 512;
    Formats& used = formats();
    const std::pair key(std::isfinite(value) ? value : 0.0, places);
    if (const auto kept = used.decimals.constFind(key); kept != used.decimals.constEnd()) {
        return *kept;
    }
    if (used.decimals.size() == mostKept) {
        used.decimals.clear();
    }
    return *used.decimals.insert(key,
                                 QString::fromStdString(used.locale->decimal(key.first, places)));
}

QString percentText(double percent) {
    return decimal(wholePercent(percent), 0) + u'%';
}

QString count(std::int64_t value) {
    return decimal(static_cast<double>(value), 0);
}

QString noFigure() {
    return u"–"_s;
}

QString gigabytes(double value) {
    return oneDecimal(value);
}

QString menuBarLabel(const SystemSnapshot& snapshot) {
    return u"CPU %1 MEM %2"_s.arg(percentText(snapshot.cpuPercent),
                                  percentText(snapshot.memory.pressure));
}

QString panelLoad(const SystemSnapshot& snapshot) {
    return u"CPU %1 · Memory %2"_s.arg(percentText(snapshot.cpuPercent),
                                       percentText(snapshot.memory.pressure));
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
    return percentText(cpuPercent) + u" normalized across cores"_s;
}

QString memoryDetail(const MemorySnapshot& memory) {
    return u"%1 GB used of %2 GB"_s.arg(gigabytes(memory.usedGB), gigabytes(memory.totalGB));
}

QString reclaimableDetail(const MemorySnapshot& memory) {
    return u"%1 GB free · Wired %2 GB · Compressed %3 GB"_s.arg(
        gigabytes(memory.freeGB), gigabytes(memory.wiredGB), gigabytes(memory.compressedGB));
}

QString sessionNote(int seconds) {
    return u"Current session · last %1 seconds"_s.arg(count(seconds));
}

QString timelineCaption(int seconds) {
    return sessionNote(seconds) + u" · updates every 4 seconds"_s;
}

QString averageAndThreshold(double average, double threshold) {
    return u"Avg %1 · Warn %2"_s.arg(percentText(average), percentText(threshold));
}

QString memoryText(double megabytes) {
    // Compares the rounded value, so that "1,024 MB" never appears beside "1.0 GB".
    if (!(std::round(megabytes) >= megabytesPerGigabyte)) {
        return u"%1 MB"_s.arg(decimal(megabytes, 0));
    }
    return u"%1 GB"_s.arg(oneDecimal(megabytes / megabytesPerGigabyte));
}

QString warnAt(double threshold) {
    return u"Warn at "_s + percentText(threshold);
}

QString sortStatus(int visible, Date updated) {
    return u"Sorted by Impact ↓ · %1 visible processes · updated %2"_s.arg(count(visible),
                                                                           timeText(updated));
}

QString timeText(Date date) {
    return QString::fromStdString(formats().locale->timeOfDay(date));
}

QString shortTimeText(Date date, Date now) {
    const Locale& locale = *formats().locale;
    return QString::fromStdString(locale.localDay(date) == locale.localDay(now)
                                      ? locale.hoursAndMinutes(date)
                                      : locale.dateAndTime(date));
}

std::int64_t localDay(Date date) {
    return formats().locale->localDay(date);
}

}  // namespace tallowcrest::dashboard_text
