#include "tests/architecture/source_text.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

namespace tallowcrest::architecture {
namespace {

bool isIdentifierPart(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

bool isBlank(char character) {
    return character == ' ' || character == '\t';
}

bool startsAt(std::string_view text, std::size_t at, std::string_view what) {
    return text.substr(at, what.size()) == what;
}

/// Replaces [from, to) by blanks, except for line ends.
void blank(std::string& text, std::size_t from, std::size_t to) {
    for (std::size_t at = from; at < to && at < text.size(); ++at) {
        if (text[at] != '\n') {
            text[at] = ' ';
        }
    }
}

std::size_t endOr(std::size_t found, std::size_t length, std::size_t end) {
    return found == std::string_view::npos ? end : found + length;
}

/// The end of the quoted text that starts at `at`; an unclosed one ends with its line.
std::size_t endOfQuoted(std::string_view text, std::size_t at) {
    const char quote = text[at];
    for (++at; at < text.size() && text[at] != '\n'; ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == quote) {
            return at + 1;
        }
    }
    return at;
}

std::size_t endOfRawString(std::string_view text, std::size_t quote) {
    const std::size_t bracket = text.find('(', quote);
    if (bracket == std::string_view::npos) {
        return text.size();
    }
    const std::string closing =
        ")" + std::string(text.substr(quote + 1, bracket - quote - 1)) + "\"";
    return endOr(text.find(closing, bracket), closing.size(), text.size());
}

/// The directives of source without comments: the number of the first line, and all after the `#`.
std::vector<Condition> directivesIn(const std::string& text) {
    std::vector<Condition> directives;
    std::size_t line = 1;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t firstLine = line;
        std::string whole;
        bool continued = true;
        while (continued && at < text.size()) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            whole += text.substr(at, end - at);
            at = end + 1;
            ++line;
            continued = !whole.empty() && whole.back() == '\\';
            if (continued) {
                whole.back() = ' ';
            }
        }
        const std::size_t first = whole.find_first_not_of(" \t");
        if (first != std::string::npos && whole[first] == '#') {
            const std::size_t word = whole.find_first_not_of(" \t", first + 1);
            if (word != std::string::npos) {
                directives.push_back({firstLine, whole.substr(word)});
            }
        }
    }
    return directives;
}

std::string firstWord(const std::string& text) {
    std::size_t end = 0;
    while (end < text.size() && isIdentifierPart(text[end])) {
        ++end;
    }
    return text.substr(0, end);
}

}  // namespace

std::string withoutComments(std::string_view text) {
    std::string result(text);
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t next = at + 1;
        if (startsAt(text, at, "//")) {
            next = endOr(text.find('\n', at), 0, text.size());
            blank(result, at, next);
        } else if (startsAt(text, at, "/*")) {
            next = endOr(text.find("*/", at + 2), 2, text.size());
            blank(result, at, next);
        } else if (startsAt(text, at, "R\"") && (at == 0 || !isIdentifierPart(text[at - 1]))) {
            next = endOfRawString(text, at + 1);
            blank(result, at, next);
        } else if (text[at] == '"') {
            next = endOfQuoted(text, at);
        } else if (text[at] == '\'' && (at == 0 || !isIdentifierPart(text[at - 1]))) {
            // After a digit it is a digit separator.
            next = endOfQuoted(text, at);
        }
        at = next;
    }
    return result;
}

std::vector<Include> includesIn(std::string_view text) {
    std::vector<Include> includes;
    for (const Condition& directive : directivesIn(withoutComments(text))) {
        const std::string word = firstWord(directive.text);
        if (word != "include") {
            continue;
        }
        const std::size_t open = directive.text.find_first_of("\"<", word.size());
        if (open == std::string::npos) {
            continue;
        }
        const bool quoted = directive.text[open] == '"';
        const std::size_t close = directive.text.find(quoted ? '"' : '>', open + 1);
        includes.push_back(
            {directive.line, directive.text.substr(open + 1, close - open - 1), quoted});
    }
    return includes;
}

std::vector<Condition> conditionsIn(std::string_view text) {
    std::vector<Condition> conditions;
    for (Condition& directive : directivesIn(withoutComments(text))) {
        const std::string word = firstWord(directive.text);
        if (word == "if" || word == "ifdef" || word == "ifndef" || word.rfind("elif", 0) == 0) {
            conditions.push_back(std::move(directive));
        }
    }
    return conditions;
}

std::vector<std::string> identifiersIn(std::string_view text) {
    std::vector<std::string> identifiers;
    std::string current;
    for (const char character : text) {
        if (isIdentifierPart(character)) {
            current += character;
        } else if (!current.empty()) {
            identifiers.push_back(std::exchange(current, {}));
        }
    }
    if (!current.empty()) {
        identifiers.push_back(current);
    }
    return identifiers;
}

std::vector<BuildCommand> buildCommandsIn(std::string_view text) {
    std::vector<BuildCommand> commands;
    std::optional<BuildCommand> open;
    std::string word;
    std::size_t line = 1;
    const auto endWord = [&] {
        if (open && !word.empty()) {
            open->arguments.push_back(std::exchange(word, {}));
        }
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character == '#') {
            at = std::min(text.find('\n', at), text.size()) - 1;
        } else if (character == '(' && !open) {
            open = BuildCommand{line, std::exchange(word, {}), {}};
        } else if (character == ')' && open) {
            endWord();
            commands.push_back(*std::exchange(open, std::nullopt));
        } else if (character == '\n' || isBlank(character)) {
            endWord();
            line += character == '\n' ? 1 : 0;
        } else if (character != '"') {
            word += character;
        }
    }
    return commands;
}

}  // namespace tallowcrest::architecture
