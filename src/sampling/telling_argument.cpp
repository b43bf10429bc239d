#include "sampling/telling_argument.h"

#include <algorithm>
#include <array>

#include "core/local_records.h"
#include "core/text.h"
#include "sampling/command_line.h"

namespace tallowcrest {
namespace {

/// How to find the script among the arguments of an interpreter. Names and options are separated
/// by blanks.
struct Interpreter {
    std::string_view names;  ///< in lower case, without a version
    std::string_view code;   ///< the letters of the options that a program text follows
    std::string_view named;  ///< the options that the program's name follows
    std::string_view other;  ///< the options that another value follows
};

constexpr std::array<Interpreter, 8> interpreters{{
    {"sh bash dash zsh ksh mksh ash fish busybox", "c", "", "-o -O +o +O --rcfile --init-file"},
    {"python pypy", "c", "-m", "-W -X --check-hash-based-pycs"},
    {"node nodejs bun", "ep", "", "-r --require --import --loader -C --conditions"},
    {"perl", "eE", "", "-I"},
    {"ruby", "e", "", "-I -r -C"},
    {"php", "r", "-f -S", "-c -d -z"},
    {"java", "", "-jar -m --module",
     "-cp -classpath --class-path -p --module-path --add-modules --add-opens --add-exports "
     "--add-reads --upgrade-module-path"},
    {"mono dotnet lua luajit tclsh wish rscript", "", "", ""},
}};

constexpr std::string_view blanks = " \t\n\r";

bool isListed(std::string_view list, std::string_view word) {
    for (std::size_t at = list.find(word); at != std::string_view::npos && !word.empty();
         at = list.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || list[at - 1] == ' ') && (end == list.size() || list[end] == ' ')) {
            return true;
        }
    }
    return false;
}

const Interpreter* interpreterOf(std::string_view program) {
    // "python3.11" is Python.
    const std::size_t end = program.find_last_not_of("0123456789.");
    const std::string name =
        loweredASCII(program.substr(0, end == std::string_view::npos ? 0 : end + 1));
    const auto found =
        std::find_if(interpreters.begin(), interpreters.end(),
                     [&name](const Interpreter& each) { return isListed(each.names, name); });
    return found == interpreters.end() ? nullptr : &*found;
}

/// Whether a program text follows: "-c", or "-ce" for several short options.
bool announcesCode(const Interpreter& interpreter, std::string_view option) {
    constexpr std::size_t mostLetters = 4;
    if (interpreter.code.empty() || option.size() < 2 || option.size() > 1 + mostLetters) {
        return !interpreter.code.empty() && (option == "--eval" || option == "--print");
    }
    const std::string_view letters = option.substr(1);
    return std::all_of(letters.begin(), letters.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }) &&
           letters.find_first_of(interpreter.code) != std::string_view::npos;
}

std::string shortened(std::string_view text) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // The other bytes of a character in UTF-8.
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U) {
            continue;
        }
        if (++characters > longestTellingArgument) {
            return std::string(text.substr(0, i)) + "…";
        }
    }
    return std::string(text);
}

/// The start of a program text, up to the first word that is an option, whose value may be a
/// secret, or looks like a secret itself.
std::string startOfCode(std::string_view code) {
    std::string start;
    for (;;) {
        code.remove_prefix(std::min(code.find_first_not_of(blanks), code.size()));
        const std::string_view word = code.substr(0, code.find_first_of(blanks));
        if (word.empty() || word.front() == '-' || looksSecret(word)) {
            return shortened(start);
        }
        start += (start.empty() ? "" : " ") + std::string(word);
        code.remove_prefix(word.size());
    }
}

std::string nameOf(std::string_view argument) {
    // The number of a descriptor tells nothing.
    if (looksSecret(argument) || argument.starts_with("/dev/fd/")) {
        return {};
    }
    if (argument.find_first_of(blanks) != std::string_view::npos) {
        // A command line of its own, with options of its own.
        return startOfCode(argument);
    }
    if (argument.find("://") == std::string_view::npos) {
        argument = lastPathComponent(argument);
    }
    return looksSecret(argument) ? std::string() : shortened(argument);
}

std::string scriptOf(const Interpreter& interpreter, const std::vector<std::string>& arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const std::string_view next =
            i + 1 < arguments.size() ? std::string_view(arguments[i + 1]) : std::string_view();
        if (argument == "--") {
            return nameOf(next);
        }
        if (argument.empty() || (argument.front() != '-' && argument.front() != '+')) {
            return nameOf(argument);
        }
        if (isListed(interpreter.named, argument)) {
            return nameOf(next);
        }
        if (announcesCode(interpreter, argument)) {
            return startOfCode(next);
        }
        i += isListed(interpreter.other, argument) ? 1U : 0U;
    }
    return {};
}

/// "renderer" of "--type=renderer", by which browsers tell their processes apart.
std::string processType(const std::vector<std::string>& arguments) {
    constexpr std::string_view option = "--type=";
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz-";
    for (const std::string& argument : arguments) {
        if (argument.starts_with(option)) {
            const std::string_view type = std::string_view(argument).substr(option.size());
            return type.find_first_not_of(letters) == std::string_view::npos ? shortened(type)
                                                                             : std::string();
        }
    }
    return {};
}

}  // namespace

std::string tellingArgument(std::string_view program, const std::vector<std::string>& arguments) {
    if (arguments.size() < 2) {
        return {};
    }
    if (const Interpreter* interpreter = interpreterOf(program)) {
        return scriptOf(*interpreter, arguments);
    }
    if (const std::string type = processType(arguments); !type.empty()) {
        return type;
    }
    // Only the first: a later one may be the value of an option, and that a secret.
    const std::string& first = arguments[1];
    return first.starts_with('-') ? std::string() : nameOf(first);
}

}  // namespace tallowcrest
