#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tallowcrest::architecture {

/// One file below src/.
struct SourceFile {
    std::string path;  ///< relative to src/: "core/date.h"
    std::string text;
};

/// One #include line.
struct Include {
    std::size_t line;    ///< counted from 1
    std::string target;  ///< without its quotes or angle brackets
    bool quoted;
};

/// One preprocessor condition.
struct Condition {
    std::size_t line;  ///< counted from 1
    std::string text;  ///< all after the `#`, continuation lines joined
};

/// `text` with comments and the contents of raw strings replaced by blanks. Line numbers are kept.
std::string withoutComments(std::string_view text);

/// The include lines of C++ source, without those in comments.
std::vector<Include> includesIn(std::string_view text);

/// The #if, #ifdef, #ifndef and #elif lines of C++ source, without those in comments.
std::vector<Condition> conditionsIn(std::string_view text);

/// The identifiers in `text`, in order.
std::vector<std::string> identifiersIn(std::string_view text);

/// One command of a CMakeLists.txt: its name and its arguments, without quotes.
struct BuildCommand {
    std::size_t line;  ///< counted from 1
    std::string name;
    std::vector<std::string> arguments;
};

/// The commands of a CMakeLists.txt, if() and endif() included.
std::vector<BuildCommand> buildCommandsIn(std::string_view text);

}  // namespace tallowcrest::architecture
