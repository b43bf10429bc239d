#include "app/console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

}  // namespace

PrintableText printableText(std::string_view text, std::size_t limit) {
    PrintableText result{replacingControlCharacters(text, "?"), 0};
    std::size_t end = 0;
    while (end < result.text.size() && result.characters < limit) {
        ++end;
        while (end < result.text.size() && continuesCharacter(result.text[end])) {
            ++end;
        }
        ++result.characters;
    }
    result.text.resize(end);
    return result;
}

std::string printableColumn(std::string_view text, std::size_t width) {
    PrintableText column = printableText(text, width);
    column.text.append(width - column.characters, ' ');
    return column.text;
}

bool writeToStandardOutput(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return true;
    }
    complain(fmt::format("standard output: {}", std::strerror(errno)));
    return false;
}

std::vector<std::string> fatalErrorLines(std::string_view reason, bool isStarting) {
    const std::string_view firstLine = reason.substr(0, reason.find('\n'));
    if (!isStarting) {
        return {fmt::format("fatal error: {}", firstLine)};
    }
    return {fmt::format("the window cannot be opened: {}", firstLine),
            "to sample without a window, try: tallowcrest --headless"};
}

void complain(std::string_view message) {
    const std::string line = fmt::format("tallowcrest: {}\n", message);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tallowcrest
