#pragma once

#include <string>

#include "core/remote_records.h"

/// Reports about another machine for the clipboard: plain text, one fact per line, no newline at
/// the end. Names that other machines chose have blanks in place of the characters that
/// `replacingControlCharacters` replaces, so that none can look like a line or a column. Pure; any
/// thread.
namespace tallowcrest {

class Locale;

std::string remoteReportText(const RemoteHealth& machine, const Locale& locale);
std::string remoteProcessReportText(const RemoteHealth& machine, const RemoteProcess& process);
std::string remoteAppReportText(const RemoteHealth& machine, const RemoteAppImpact& app);

}  // namespace tallowcrest
