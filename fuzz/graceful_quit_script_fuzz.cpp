#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "actions/apple_script_quit.h"
#include "core/text.h"

#include "fuzz/require.h"

namespace {

constexpr std::string_view scriptStart = "tell application \"";
constexpr std::string_view scriptEnd = "\"\n    if it is running then quit\nend tell";

/// Whether `name` has no character that could end the quoted name or its line.
bool isSafeInQuotes(std::string_view name) {
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F || byte == '"' || byte == '\\') {
            return false;
        }
    }
    for (unsigned last = 0x80; last <= 0x9F; ++last) {
        const std::string control{'\xC2', static_cast<char>(last)};
        if (name.find(control) != std::string_view::npos) {
            return false;
        }
    }
    return name.find("\u2028") == std::string_view::npos &&
           name.find("\u2029") == std::string_view::npos;
}

}  // namespace

/// The input is the name of an application group.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string name(data, data + size);
    const auto script = tallowcrest::gracefulQuitScript(name);

    const bool isHarmless = !name.empty() && tallowcrest::isValidUTF8(name) && isSafeInQuotes(name);
    require(script.has_value() == isHarmless);
    if (script) {
        require(script->size() == scriptStart.size() + size + scriptEnd.size());
        require(script->starts_with(scriptStart) && script->ends_with(scriptEnd));
        require(std::string_view(*script).substr(scriptStart.size(), size) == name);
    }
    return 0;
}
