#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/text.h"
#include "sampling/command_line.h"
#include "sampling/telling_argument.h"

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string text(data, data + size);
    const std::vector<std::string> arguments = parseCommandLine(text);

    std::string joined;
    for (const std::string& argument : arguments) {
        require(argument.find('\0') == std::string::npos && isValidUTF8(argument));
        joined += (joined.empty() && &argument == &arguments.front() ? "" : std::string(1, '\0')) +
                  argument;
    }
    const std::size_t last = text.find_last_not_of('\0');
    const std::string whole = last == std::string::npos ? "" : text.substr(0, last + 1);
    require(!isValidUTF8(whole) || joined == whole);

    for (const char* program : {"tool", "bash", "python3", "java", "node"}) {
        const std::string told = tellingArgument(program, arguments);
        const auto characters = std::count_if(told.begin(), told.end(), [](char c) {
            return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
        });
        require(isValidUTF8(told));
        require(static_cast<std::size_t>(characters) <= longestTellingArgument + 1);
    }

    // Whatever the password is, it has no effect on what is shown.
    require(isValidUTF8(commandLineText(arguments)));
    for (const std::string& argument : arguments) {
        if (!argument.starts_with('-')) {
            const std::string shown = commandLineText({"tool", "--password", argument, "x"});
            // A word such as "token" hides what follows it as well.
            const bool hidesNext = argument == "password" || argument == "passwd" ||
                                   argument == "passphrase" || argument == "token";
            require(shown == (hidesNext ? "tool --password (hidden) (hidden)"
                                        : "tool --password (hidden) x"));
        }
        require(commandLineText({"tool", "--password=x" + argument}) == "tool --password=(hidden)");
        require(tellingArgument("tool", {"tool", "--password", argument}).empty() ||
                argument.starts_with("--type="));
    }
    return 0;
}
