#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "actions/command_validators.h"
#include "core/text.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest::CommandSafetyPolicy;

/// What every accepted argument must be: printable, without special characters, and not an option.
bool isHarmlessWord(std::string_view word) {
    return word.find_first_not_of(
               "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
               ".:%_-") == std::string_view::npos &&
           !word.starts_with('-');
}

/// The word that a POSIX shell reads from its quoted form.
std::string unquoted(std::string_view word) {
    std::string text;
    bool inQuotes = false;
    for (std::size_t index = 0; index < word.size(); ++index) {
        if (word[index] == '\'') {
            inQuotes = !inQuotes;
        } else if (!inQuotes) {
            // Outside the quotes there are only escaped quotes.
            require(word[index] == '\\' && index + 1 < word.size() && word[index + 1] == '\'');
            text += word[++index];
        } else {
            text += word[index];
        }
    }
    require(!inQuotes);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::string_view trimmed = tallowcrest::trimmingWhiteSpace(text);
    require(tallowcrest::trimmingWhiteSpace(trimmed) == trimmed);

    const auto user = validatedSSHUsername(text);
    if (user) {
        require(*user == trimmed && user->size() <= 32 && isHarmlessWord(*user));
        require(validatedSSHUsername(*user) == user);
    }
    require(!trimmed.empty() || user == std::string());

    const auto host = validatedSSHHost(text);
    if (host) {
        require(*host == trimmed && !host->empty() && host->size() <= 253 && isHarmlessWord(*host));
        require(validatedSSHHost(*host) == host);
    }

    const std::size_t middle = text.size() / 2;
    const std::string_view left = std::string_view(text).substr(0, middle);
    const std::string_view right = std::string_view(text).substr(middle);
    const auto target = sshTarget(left, right);
    require(target.has_value() ==
            (validatedSSHUsername(left).has_value() && validatedSSHHost(right).has_value()));
    if (target) {
        require(!target->starts_with('-') && std::count(target->begin(), target->end(), '@') <= 1);
    }

    require(unquoted(shellQuoted(text)) == text);

    std::int64_t pid = 0;
    std::memcpy(&pid, text.data(), std::min(text.size(), sizeof(pid)));
    const bool validPID = pid >= 2 && pid <= 2147483647;
    require(validatedPID(pid).has_value() == validPID);
    require(remoteTerminateCommand(pid).has_value() == validPID);
    return 0;
}
