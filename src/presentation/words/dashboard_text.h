#pragma once

#include <cstdint>
#include <memory>

#include <QString>

#include "core/local_records.h"
#include "core/locale.h"

/// The texts that the shell and several screens share, and the one source of number and date
/// formats for everything on screen. Main thread.
namespace tallowcrest::dashboard_text {

/// From now on numbers and dates are formatted by `locale`, never null; by `PlainLocale` before the
/// first call. The window sets it to the monitor's when it is built.
void setLocale(std::shared_ptr<const Locale> locale);

/// A record's UTF-8 text as one line. Such a text may contain a process name, which can be anything
/// and must not imitate our own words or be drawn over its neighbours: control characters,
/// bidirectional overrides and invisible characters become U+FFFD, and of the marks that are
/// stacked on one character (accents) the first three remain. A joiner between two characters of a
/// script that needs it remains.
QString text(std::string_view utf8);
/// The same of at most `most` UTF-16 units, and "…" behind them if that is not all.
QString shortText(std::string_view utf8, qsizetype most);

/// The same of a text of several lines: they remain, and each tab becomes `tab`.
QString lines(std::string_view utf8, QStringView tab = u"    ");

/// A percentage rounded to a whole number, clamped to ±100,000; 0 if it is not finite.
int wholePercent(double percent);
/// `value` with that many decimals and the locale's separators; a value that is not finite as 0.
QString decimal(double value, int places);
/// "12%": `wholePercent` in the format of the locale.
QString percentText(double percent);
/// A whole number in the format of the locale, with its separators.
QString count(std::int64_t value);
/// "1 process", "3 processes"
QString processes(std::int64_t count);
/// Shown in place of a figure that is not known yet.
QString noFigure();
/// One decimal, without the unit.
QString gigabytes(double value);
/// "512 MB", with this many decimals.
QString megabytes(double value, int decimals);
/// "12.3%"
QString percentWithDecimal(double value);

/// "CPU 12% MEM 34%"
QString menuBarLabel(const SystemSnapshot& snapshot);
/// "CPU 12% · Memory 34%"
QString panelLoad(const SystemSnapshot& snapshot);
/// "Top: NAME · 1.5 GB"; empty without a group.
QString panelTopGroup(const SystemSnapshot& snapshot);

/// "TITLE · Caution"
QString panelLatest(const Recommendation& recommendation);

/// "12% normalized across cores"
QString cpuDetail(double cpuPercent);
QString memoryDetail(const MemorySnapshot& memory);
QString reclaimableDetail(const MemorySnapshot& memory);

QString sessionNote(int seconds);
QString timelineCaption(int seconds);
/// "Avg 12% · Warn 82%"
QString averageAndThreshold(double average, double threshold);
/// Resident memory: "512 MB" below one GB, else "1.5 GB".
QString memoryText(double megabytes);
QString warnAt(double threshold);
/// "Sorted by Impact ↓ · 120 visible processes · updated 2:03:55 PM", where `order` is "Impact ↓".
QString sortStatus(const QString& order, int visible, Date updated);
/// The local time of day to the second: "2:03:55 PM", "14:03:55".
QString timeText(Date date);
/// The local time of day in hours and minutes, "2:03 PM"; with the date before it if `now` is on
/// another day.
QString shortTimeText(Date date, Date now);
/// The time of a sample to the second, as `timeText`; as `shortTimeText` if `now` is on another
/// day.
QString pointTimeText(Date date, Date now);
/// How old figures are: "just now" within a minute, "2 min ago", "3 h ago". As `shortTimeText` for
/// those of more than a day, and for those of the future, whose age is unknown: the clock was set.
QString age(Date sampledAt, Date now);
/// When the sample was taken; absent without one.
std::optional<Date> sampledAt(const std::optional<SystemSnapshot>& snapshot);
/// The day of `date` in local time, as `Locale::localDay` numbers it.
std::int64_t localDay(Date date);

}  // namespace tallowcrest::dashboard_text
