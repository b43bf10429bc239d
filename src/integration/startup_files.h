#pragma once

#include <string>
#include <string_view>

/// The files by which a desktop starts the program, for the absolute path `application` of what is
/// started, in any bytes. Pure; any thread.
namespace tallowcrest {

/// Of the menu of applications on Linux.
std::string menuEntry(std::string_view application);

/// Of the start at login on Linux. A program that is gone is not missed.
std::string autostartEntry(std::string_view application);

/// Whether a desktop has turned off such an entry instead of removing it.
bool isTurnedOff(std::string_view entry);

/// The property list of the start at login on macOS.
std::string launchAgent(std::string_view application);

}  // namespace tallowcrest
