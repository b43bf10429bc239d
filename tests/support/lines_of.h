#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace tallowcrest {

/// The lines of `text` without their ends. A line end at the end of the text begins no line.
inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace tallowcrest
