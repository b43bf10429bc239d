#pragma once

#include <cstddef>
#include <span>

/// The beginning of the log that SQLite keeps of the latest changes to a file, where damage makes
/// it pass over the whole log without a word. Any thread.
namespace tallowcrest::settings_log {

/// The header, the largest first record, and the header of the second one.
inline constexpr std::size_t longestStart = 32 + 24 + 65536 + 24;

/// Judges the first `longestStart` bytes, or all when there are fewer. False when there were
/// changes of which SQLite would see nothing. A log is sound that is empty, that was begun anew and
/// holds but older records, or whose first change was cut short: such a change was never stored.
/// What follows a sound first record is SQLite's to judge.
bool isSound(std::span<const unsigned char> start);

}  // namespace tallowcrest::settings_log
