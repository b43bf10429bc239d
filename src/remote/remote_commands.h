#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tallowcrest {
struct RemoteProcess;
}

/// Command lines for other machines. `host` and `target` are what the validators of
/// `CommandSafetyPolicy` returned. Pure; any thread.
namespace tallowcrest::remote_commands {

/// The arguments with which the secure shell runs `command` on the other machine. It asks for
/// nothing: without an accepted key and a known host it fails.
std::vector<std::string> sshArguments(const std::string& target, const std::string& command);

/// For the other machine's shell: drops its file caches, and prints "purge_ok" if that was allowed.
std::string purge(bool isLinux);

/// The same: asks a process to quit, and prints "quit_ok" if that was done. On Linux only while it
/// still has its name, as far as letters, digits and the places of other characters tell. Absent
/// for a PID that is not valid, and on Linux without a name.
std::optional<std::string> quit(const RemoteProcess& process, bool isLinux);

// For the owner's own terminal; this program does not run them.

/// Logs in, and prints the version of the other machine's system and its free memory.
std::string sshDiagnostic(std::string_view target, bool isLinux);
std::string tailscalePing(std::string_view host);
/// `test` is `Places::portTest`.
std::string portTest(std::string_view test, std::string_view host);
/// Replaces the key by which this machine knows the other one.
std::string hostKeyRepair(std::string_view host, std::string_view target);
/// Allows `publicKey` to log in on the other machine, if it is not allowed already.
std::string keyInstall(std::string_view target, std::string_view publicKey);
/// Makes a key where there is none.
inline constexpr std::string_view keyGeneration =
    "ssh-keygen -t ed25519 -C \"tallowcrest@$(hostname)\"";

}  // namespace tallowcrest::remote_commands
