#pragma once

#include <string>
#include <string_view>

namespace tallowcrest {

/// The script that samples a Mac, to be run by the shell of the account there. Its output is what
/// `parseRemoteSample` reads. The text is a wire format: not one byte of it changes.
std::string_view macSampleScript();

/// The command that samples a Linux machine, for the login shells sh, bash, dash, fish, zsh and
/// those like them, but not csh: it has the script below run by `sh`. The output has the same
/// lines.
std::string linuxSampleCommand();

/// The script in `linuxSampleCommand`. It needs a POSIX shell, awk, sed, sort and /proc, and takes
/// one second, over which it measures the CPU.
std::string_view linuxSampleScript();

}  // namespace tallowcrest
