#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Checks of everything that becomes part of a command line. They accept untrusted input. Pure; any
/// thread.
namespace tallowcrest::CommandSafetyPolicy {

/// The name without surrounding white space: a letter or underscore, then letters, digits and
/// "._-", at most 32 characters. The empty text when nothing is left, which means that a target has
/// no user part. Absent when invalid.
std::optional<std::string> validatedSSHUsername(std::string_view text);

/// The host name or address without surrounding white space: a letter or digit, then letters,
/// digits and ".:%_-", at most 253 characters. Absent when invalid or empty.
std::optional<std::string> validatedSSHHost(std::string_view text);

/// "user@host", or the host alone for an empty user. Absent when either part is invalid.
std::optional<std::string> sshTarget(std::string_view user, std::string_view host);

/// `pid` itself. Absent below 2 and above 2147483647.
std::optional<std::int64_t> validatedPID(std::int64_t pid);

/// The command line for a remote shell that asks one process to end and prints "quit_ok" on
/// success. Absent for a pid that `validatedPID` refuses.
std::optional<std::string> remoteTerminateCommand(std::int64_t pid);

/// `text` quoted as one word of a POSIX shell, for command lines that a remote shell runs or that
/// the owner copies. This program starts no shell on this machine.
std::string shellQuoted(std::string_view text);

}  // namespace tallowcrest::CommandSafetyPolicy
