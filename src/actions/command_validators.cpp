#include "actions/command_validators.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest::CommandSafetyPolicy {

namespace {

// Lengths are counted in bytes although the limits are in characters: only ASCII passes the
// patterns, so a text for which the two counts differ is refused either way.
constexpr std::size_t maximumUsernameLength = 32;
constexpr std::size_t maximumHostLength = 253;

constexpr std::int64_t lowestPID = 2;
constexpr std::int64_t highestPID = 2147483647;

// The standard library's classification is not used, because it depends on the locale.
bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool isLetterOrDigit(char character) {
    return isLetter(character) || (character >= '0' && character <= '9');
}

bool isUsernameCharacter(char character) {
    return isLetterOrDigit(character) ||
           std::string_view("._-").find(character) != std::string_view::npos;
}

bool isHostCharacter(char character) {
    return isLetterOrDigit(character) ||
           std::string_view(".:%_-").find(character) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> validatedSSHUsername(std::string_view text) {
    const std::string_view name = trimmingWhiteSpace(text);
    if (name.empty()) {
        return std::string();
    }
    if (name.size() > maximumUsernameLength) {
        return std::nullopt;
    }
    if (!(isLetter(name.front()) || name.front() == '_') ||
        !std::all_of(name.begin() + 1, name.end(), isUsernameCharacter)) {
        return std::nullopt;
    }
    return std::string(name);
}

std::optional<std::string> validatedSSHHost(std::string_view text) {
    const std::string_view host = trimmingWhiteSpace(text);
    if (host.empty() || host.size() > maximumHostLength) {
        return std::nullopt;
    }
    // The pattern below refuses this too. It is checked separately because the value becomes an
    // argument, and a leading hyphen would make it an option even if the pattern were changed.
    if (host.front() == '-') {
        return std::nullopt;
    }
    if (!isLetterOrDigit(host.front()) ||
        !std::all_of(host.begin() + 1, host.end(), isHostCharacter)) {
        return std::nullopt;
    }
    return std::string(host);
}

std::optional<std::string> sshTarget(std::string_view user, std::string_view host) {
    const auto validUser = validatedSSHUsername(user);
    if (!validUser) {
        return std::nullopt;
    }
    auto validHost = validatedSSHHost(host);
    if (!validHost || validUser->empty()) {
        return validHost;
    }
    return *validUser + "@" + *validHost;
}

std::optional<std::int64_t> validatedPID(std::int64_t pid) {
    if (pid < lowestPID || pid > highestPID) {
        return std::nullopt;
    }
    return pid;
}

std::optional<std::string> remoteTerminateCommand(std::int64_t pid) {
    const auto valid = validatedPID(pid);
    if (!valid) {
        return std::nullopt;
    }
    return fmt::format("/bin/kill -TERM {} && /bin/echo quit_ok", *valid);
}

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'') {
            quoted += R"('\'')";
        } else {
            quoted += character;
        }
    }
    quoted += '\'';
    return quoted;
}

}  // namespace tallowcrest::CommandSafetyPolicy
