#include "actions/apple_script_quit.h"

#include <cstddef>

#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::string_view scriptStart = "tell application \"";
constexpr std::string_view scriptEnd = "\"\n    if it is running then quit\nend tell";

/// Whether the character at `index` of a valid UTF-8 text could end the quoted name or its line.
/// Such names are refused instead of escaped: no application has one, so it is likely an attack.
bool isUnsafeAt(std::string_view text, std::size_t index) {
    const auto byteAt = [text](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned byte = byteAt(index);
    if (byte < 0x20 || byte == 0x7F || byte == '"' || byte == '\\') {
        return true;
    }
    // The C1 control characters, U+0080 to U+009F. U+0085 among them ends a line.
    if (byte == 0xC2) {
        return byteAt(index + 1) < 0xA0;
    }
    // U+2028 and U+2029 separate lines and paragraphs.
    return byte == 0xE2 && byteAt(index + 1) == 0x80 &&
           (byteAt(index + 2) == 0xA8 || byteAt(index + 2) == 0xA9);
}

}  // namespace

std::optional<std::string> gracefulQuitScript(std::string_view name) {
    if (name.empty() || !isValidUTF8(name)) {
        return std::nullopt;
    }
    for (std::size_t index = 0; index < name.size(); ++index) {
        if (isUnsafeAt(name, index)) {
            return std::nullopt;
        }
    }
    std::string script;
    script.reserve(scriptStart.size() + name.size() + scriptEnd.size());
    return script.append(scriptStart).append(name).append(scriptEnd);
}

AppleScriptQuit::AppleScriptQuit(const CommandSafetyPolicy::AllowedExecutables& allowed,
                                 ToolLauncher& launcher)
    : allowed_(allowed), launcher_(launcher) {}

bool AppleScriptQuit::ask(const std::string& name, const std::vector<ProcessSample>& /*members*/) {
    const std::string tool = "/usr/bin/osascript";
    if (!isAllowedExecutable(allowed_, tool)) {
        return false;
    }
    const std::optional<std::string> script = gracefulQuitScript(name);
    if (!script) {
        return false;
    }
    const ToolResult result = launcher_.launch({.path = tool, .arguments = {"-e", *script}});
    return result.launched && result.terminationStatus == 0;
}

}  // namespace tallowcrest
