#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include <QString>
#include <QStringList>

/// The texts of the confirmation dialog that are not in the request. Main thread.
namespace tallowcrest::confirmation_lines {

/// With more processes than this, the rest is only counted in the dialog itself.
inline constexpr std::size_t mostPIDs = 12;

/// "3 processes: 25631, 25632, 25633", and of many "27 processes: 1, 2, … 12 and 15 more". Empty
/// without any.
QString processes(std::span<const std::int64_t> pids, std::size_t most = mostPIDs);

/// "Executable" or "Executables"
QString executables(std::size_t count);

/// Those of the dialog's texts that a screen reader does not read out by itself when the dialog
/// opens: it skips labels of one or two words.
QStringList unreadLines(const QStringList& texts);

}  // namespace tallowcrest::confirmation_lines
