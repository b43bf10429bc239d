#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The arguments that a process was started with. Pure; any thread.
namespace tallowcrest {

/// Shown in place of a value that may be a password or a token.
inline constexpr std::string_view hiddenValue = "(hidden)";

/// The arguments in the text of `/proc/PID/cmdline`, the program's own name first; the last one
/// may be truncated. Each is valid UTF-8. Empty for a process without arguments, such as a kernel
/// thread.
std::vector<std::string> parseCommandLine(std::string_view text);

/// Whether a text looks as if it contains a password, a token or a key. A guess that rather says
/// yes too often. False for a value that only its option's name gives away.
bool looksSecret(std::string_view text);

/// Whether the value of an option or variable of this name ("--api-key", "PGPASSWORD") is a secret.
bool namesSecret(std::string_view name);

/// The arguments as one line, with `hiddenValue` in place of each that may be a secret.
std::string commandLineText(const std::vector<std::string>& arguments);

}  // namespace tallowcrest
