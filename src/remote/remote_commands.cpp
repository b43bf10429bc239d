#include "remote/remote_commands.h"

#include <algorithm>
#include <functional>

#include <fmt/format.h>

#include "actions/command_validators.h"
#include "core/remote_records.h"

namespace tallowcrest::remote_commands {

using CommandSafetyPolicy::shellQuoted;

namespace {

/// A basic regular expression that a name fits, and that means the same to every shell without
/// quotes: in one shell of another machine a name can end what quotes it for the others.
std::string patternOf(std::string_view name) {
    std::string pattern(name);
    const auto isPlain = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '-' || character == '_';
    };
    std::ranges::replace_if(pattern, std::not_fn(isPlain), '.');
    return pattern;
}

}  // namespace

std::vector<std::string> sshArguments(const std::string& target, const std::string& command) {
    return {"-o", "BatchMode=yes", "-o", "ConnectTimeout=5", target, command};
}

// Some shells print a command that fails. The word of success is in two parts on Linux, so that
// this is not taken for success.

std::string purge(bool isLinux) {
    return isLinux ? R"(sudo -n sysctl -w vm.drop_caches=1 && echo purge_""ok)"
                   : "/usr/sbin/purge && echo purge_ok";
}

std::optional<std::string> quit(const RemoteProcess& process, bool isLinux) {
    if (!isLinux) {
        return CommandSafetyPolicy::remoteTerminateCommand(process.pid);
    }
    const std::optional<std::int64_t> pid = CommandSafetyPolicy::validatedPID(process.pid);
    if (!pid || process.command.empty()) {
        return std::nullopt;
    }
    // The scan may be hours old, and another process may have the PID by now. In the C locale each
    // byte of the name counts, as in the sample.
    return fmt::format(
        R"(env LC_ALL=C grep -qx -e {} /proc/{}/comm && kill -TERM {} && echo quit_""ok)",
        patternOf(process.command), *pid, *pid);
}

std::string sshDiagnostic(std::string_view target, bool isLinux) {
    return fmt::format("ssh -vvv -o BatchMode=yes -o ConnectTimeout=5 {} 'echo connected && {}'",
                       shellQuoted(target),
                       isLinux ? "uname -sr && grep MemAvailable /proc/meminfo"
                               : "sw_vers -productVersion && memory_pressure -Q");
}

std::string tailscalePing(std::string_view host) {
    return fmt::format("tailscale ping --timeout=5s {}", shellQuoted(host));
}

std::string portTest(std::string_view test, std::string_view host) {
    return fmt::format("{} {} 22", test, shellQuoted(host));
}

std::string hostKeyRepair(std::string_view host, std::string_view target) {
    return fmt::format(
        "ssh-keygen -R {0} && ssh-keyscan -H {0} >> ~/.ssh/known_hosts && "
        "ssh -o BatchMode=yes {1} 'echo connected'",
        shellQuoted(host), shellQuoted(target));
}

std::string keyInstall(std::string_view target, std::string_view publicKey) {
    // The owner's shell takes the quotes of the key for the ends of those around the command, so
    // the key reaches the other machine as bare words, which is what a key consists of.
    const std::string key = shellQuoted(publicKey);
    return fmt::format(
        "ssh {} 'mkdir -p ~/.ssh && chmod 700 ~/.ssh && grep -qxF {key} ~/.ssh/authorized_keys "
        "2>/dev/null || echo {key} >> ~/.ssh/authorized_keys && chmod 600 ~/.ssh/authorized_keys'",
        shellQuoted(target), fmt::arg("key", key));
}

}  // namespace tallowcrest::remote_commands
