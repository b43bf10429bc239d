#pragma once

#include <QDate>
#include <QString>

#include "core/local_records.h"

/// The words of the shell and the screens around their figures, in the locale's number formats.
/// Pure; any thread.
namespace tallowcrest::dashboard_text {

/// Text that the records hold as UTF-8, as one line that reads in the order in which it is written.
/// Most of it may hold a name, and a process may be called anything: it is not to pass for words of
/// our own.
QString text(std::string_view utf8);

/// A percentage rounded to a whole number, without its sign; 0 for what is not finite.
int wholePercent(double percent);
QString percentText(double percent);
/// Stands for a figure before there is one.
QString noFigure();
/// One decimal, without the unit.
QString gigabytes(double value);

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
/// Resident memory as a person reads it: "512 MB" below one GB, else "1.5 GB".
QString memoryText(double megabytes);
QString warnAt(double threshold);
/// "Sorted by Impact ↓ · 120 visible processes · updated 2:03:55 PM"
QString sortStatus(int count, Date updated);
/// A time of day to the second, as the locale writes it: "2:03:55 PM", "14:03:55".
QString timeText(Date date);
/// A time in the locale's short form, "2:03 PM", with its date on another day than `now`.
QString shortTimeText(Date date, Date now);
/// The day of `date` in the local time zone.
QDate localDay(Date date);

}  // namespace tallowcrest::dashboard_text
