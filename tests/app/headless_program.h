#pragma once

#include <string>
#include <vector>

#include "tests/support/lines_of.h"
#include "tests/support/run_program.h"

namespace tallowcrest {

inline const std::string program = TALLOWCREST_BINARY_DIR "/tallowcrest";
/// With a key of the person who runs the tests, the program would ask a real provider.
inline const std::vector<std::string> hiddenVariables{"DISPLAY", "WAYLAND_DISPLAY",
                                                      "QT_QPA_PLATFORM", "TALLOWCREST_AI_KEY"};

/// Runs the program without a display. `variables` are "NAME=value".
inline ProgramResult run(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& variables = {}) {
    return runProgram({.path = program,
                       .arguments = arguments,
                       .withoutVariables = hiddenVariables,
                       .withVariables = variables,
                       .standardOutputPath = {}});
}

}  // namespace tallowcrest
