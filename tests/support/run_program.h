#pragma once

#include <string>
#include <vector>

namespace tallowcrest {

/// How to run a program.
struct ProgramRun {
    std::string path;                         ///< absolute
    std::vector<std::string> arguments = {};  ///< without the program's own name
    /// Names of variables that the program must not inherit.
    std::vector<std::string> withoutVariables = {};
    /// "NAME=value" for additional variables, which replace inherited ones.
    std::vector<std::string> withVariables = {};
    /// The file for standard output; captured when empty.
    std::string standardOutputPath = {};
    bool closeStandardOutput = false;
    bool closeStandardError = false;
    /// Closes the reading end after the first line of standard output.
    bool readOneLineOnly = false;
    bool ignorePipeSignal = false;
};

struct ProgramResult {
    int status = -1;  ///< exit status; -1 when a signal ended the program
    int signal = 0;   ///< the signal that ended it; 0 when it exited
    std::string standardOutput;
    std::string standardError;
};

/// Runs a program and waits for its end. After `deadlineSeconds` it is killed; the signal is then
/// in the result.
ProgramResult runProgram(const ProgramRun& run, int deadlineSeconds = 60);

/// The standard output of a shell command.
std::string shellOutput(const std::string& command);

}  // namespace tallowcrest
