#include "presentation/words/dashboard_text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <QList>

#include "core/text.h"
#include "sampling/binary_units.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::dashboard_text {
namespace {

struct Formats {
    std::shared_ptr<const Locale> locale = std::make_shared<PlainLocale>();
    /// The texts of the last numbers: in a table most figures are those of the tick before.
    std::map<std::pair<double, int>, QString> decimals = {};
};

Formats& formats() {
    static Formats formats;
    return formats;
}

QString oneDecimal(double value) {
    return decimal(value, 1);
}

bool isMark(char32_t c) {
    const QChar::Category category = QChar::category(c);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing;
}

bool isInvisible(char32_t c) {
    // Fillers count as letters or symbols, but have no glyph.
    return QChar::category(c) == QChar::Other_Format || c == 0x034F || c == 0x115F || c == 0x1160 ||
           c == 0x17B4 || c == 0x17B5 || c == 0x2800 || c == 0x3164 || c == 0xFFA0;
}

/// Whether a joiner or a variation selector beside `c` can change how it looks. It can in the
/// scripts whose letters join, and for pictures. Variants of Chinese characters do not count, as
/// most fonts have none.
bool isJoinable(char32_t c) {
    switch (QChar::script(c)) {
        case QChar::Script_Arabic:
        case QChar::Script_Syriac:
        case QChar::Script_Nko:
        case QChar::Script_Mongolian:
        case QChar::Script_Devanagari:
        case QChar::Script_Bengali:
        case QChar::Script_Gurmukhi:
        case QChar::Script_Gujarati:
        case QChar::Script_Oriya:
        case QChar::Script_Tamil:
        case QChar::Script_Telugu:
        case QChar::Script_Kannada:
        case QChar::Script_Malayalam:
        case QChar::Script_Sinhala:
        case QChar::Script_Tibetan:
        case QChar::Script_Myanmar:
        case QChar::Script_Khmer:
            return !isInvisible(c);
        default:
            break;
    }
    constexpr char32_t firstPicture = 0x2000;
    const QChar::Category category = QChar::category(c);
    return c >= firstPicture && !isInvisible(c) &&
           (category == QChar::Symbol_Other || category == QChar::Symbol_Modifier ||
            category == QChar::Symbol_Math);
}

/// They choose the look of the character before them, which only some scripts have a choice for.
bool isVariationSelector(char32_t c) {
    return (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0xE0100 && c <= 0xE01EF) ||
           (c >= 0x180B && c <= 0x180F);
}

QString withoutHiddenCharacters(const QString& text) {
    constexpr int mostMarks = 3;
    constexpr char32_t replacement = QChar::ReplacementCharacter;
    const QList<uint> characters = text.toUcs4();
    QString result;
    result.reserve(text.size());
    char32_t base = 0;  // the last character that is not a mark
    int marks = 0;
    for (qsizetype i = 0; i < characters.size(); ++i) {
        const char32_t c = characters[i];
        const bool follows = isJoinable(base);
        if (isMark(c) && !isInvisible(c) && (!isVariationSelector(c) || follows)) {
            ++marks;
            if (marks <= mostMarks) {
                result += QChar::fromUcs4(c);
            }
            continue;
        }
        marks = 0;
        const bool isJoiner = c == 0x200C || c == 0x200D;
        const bool joins =
            isJoiner && follows && i + 1 < characters.size() && isJoinable(characters[i + 1]);
        const bool isHidden = isVariationSelector(c) || (isInvisible(c) && !joins);
        result += QChar::fromUcs4(isHidden ? replacement : c);
        base = isHidden ? 0 : c;
    }
    return result;
}

}  // namespace

void setLocale(std::shared_ptr<const Locale> locale) {
    formats() = {std::move(locale)};
}

QString text(std::string_view utf8) {
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return c >= ' ' && c <= '~'; })) {
        return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    }
    return withoutHiddenCharacters(
        QString::fromStdString(replacingControlCharacters(utf8, "\uFFFD")));
}

QString shortText(std::string_view utf8, qsizetype most) {
    // Enough for characters of four bytes. To make a text of megabytes safe takes time.
    std::size_t bytes = std::min(utf8.size(), static_cast<std::size_t>(most) * 4);
    while (bytes > 0 && bytes < utf8.size() && (utf8[bytes] & '\xC0') == '\x80') {
        --bytes;
    }
    const QString shown = text(utf8.substr(0, bytes));
    if (shown.size() <= most) {
        return bytes == utf8.size() ? shown : shown + u'…';
    }
    return shown.left(most - (shown[most - 1].isHighSurrogate() ? 1 : 0)) + u'…';
}

QString lines(std::string_view utf8, QStringView tab) {
    QString result;
    for (;;) {
        const std::size_t end = std::min(utf8.find('\n'), utf8.size());
        std::string_view line = utf8.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        for (std::size_t at = line.find('\t'); at != std::string_view::npos; at = line.find('\t')) {
            result += text(line.substr(0, at));
            result += tab;
            line.remove_prefix(at + 1);
        }
        result += text(line);
        if (end == utf8.size()) {
            return result;
        }
        result += u'\n';
        utf8.remove_prefix(end + 1);
    }
}

int wholePercent(double percent) {
    constexpr double bound = 100'000.0;
    return std::isfinite(percent)
               ? static_cast<int>(std::lround(std::clamp(percent, -bound, bound)))
               : 0;
}

QString decimal(double value, int places) {
    constexpr std::size_t mostKept = 512;
    Formats& used = formats();
    const std::pair key(std::isfinite(value) ? value : 0.0, places);
    if (const auto kept = used.decimals.find(key); kept != used.decimals.end()) {
        return kept->second;
    }
    if (used.decimals.size() == mostKept) {
        used.decimals.clear();
    }
    const QString text = QString::fromStdString(used.locale->decimal(key.first, places));
    return used.decimals.emplace(key, text).first->second;
}

QString percentText(double percent) {
    return decimal(wholePercent(percent), 0) + u'%';
}

QString count(std::int64_t value) {
    return decimal(static_cast<double>(value), 0);
}

QString processes(std::int64_t count) {
    return count == 1 ? u"1 process"_s : dashboard_text::count(count) + u" processes"_s;
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

QString megabytes(double value, int decimals) {
    return u"%1 MB"_s.arg(decimal(value, decimals));
}

QString percentWithDecimal(double value) {
    return u"%1%"_s.arg(decimal(value, 1));
}

std::optional<Date> sampledAt(const std::optional<SystemSnapshot>& snapshot) {
    return snapshot ? std::optional(snapshot->sampledAt) : std::nullopt;
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
        return dashboard_text::megabytes(megabytes, 0);
    }
    return u"%1 GB"_s.arg(oneDecimal(megabytes / megabytesPerGigabyte));
}

QString warnAt(double threshold) {
    return u"Warn at "_s + percentText(threshold);
}

QString sortStatus(const QString& order, int visible, Date updated) {
    return u"Sorted by %1 · %2 visible processes · updated %3"_s.arg(order, count(visible),
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

QString pointTimeText(Date date, Date now) {
    return localDay(date) == localDay(now) ? timeText(date) : shortTimeText(date, now);
}

QString age(Date sampledAt, Date now) {
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    constexpr double day = 24 * hour;
    const double seconds = secondsBetween(sampledAt, now);
    if (!(seconds >= 0 && seconds < day)) {
        return shortTimeText(sampledAt, now);
    }
    if (seconds < minute) {
        return u"just now"_s;
    }
    return seconds < hour ? u"%1 min ago"_s.arg(count(static_cast<int>(seconds / minute)))
                          : u"%1 h ago"_s.arg(count(static_cast<int>(seconds / hour)));
}

std::int64_t localDay(Date date) {
    return formats().locale->localDay(date);
}

}  // namespace tallowcrest::dashboard_text
