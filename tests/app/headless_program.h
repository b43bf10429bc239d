#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"

namespace tallowcrest {

inline const std::string program = TALLOWCREST_BINARY_DIR "/tallowcrest";
inline const std::vector<std::string> displayVariables{"DISPLAY", "WAYLAND_DISPLAY",
                                                       "QT_QPA_PLATFORM"};

/// The program without a display. `variables` are "NAME=value".
inline ProgramResult run(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& variables = {}) {
    return runProgram({.path = program,
                       .arguments = arguments,
                       .withoutVariables = displayVariables,
                       .withVariables = variables,
                       .standardOutputPath = {}});
}

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace tallowcrest
