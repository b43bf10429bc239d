#pragma once

#include <string>
#include <vector>

namespace tallowcrest {

/// How a test wants a program to be run.
struct ProgramRun {
    std::string path;                         ///< absolute
    std::vector<std::string> arguments = {};  ///< without the program's own name
    /// Names of variables that the program must not inherit.
    std::vector<std::string> withoutVariables = {};
    /// "NAME=value" for variables that it gets on top, replacing inherited ones.
    std::vector<std::string> withVariables = {};
    /// Where standard output goes; captured when empty.
    std::string standardOutputPath = {};
    bool closeStandardOutput = false;
    bool closeStandardError = false;
    /// Closes the reading end after the first line of standard output has come.
    bool readOneLineOnly = false;
    bool ignorePipeSignal = false;
};

struct ProgramResult {
    int status = -1;  ///< exit status; -1 when a signal ended the program
    int signal = 0;   ///< the signal that ended it; 0 when it exited
    std::string standardOutput;
    std::string standardError;
};

/// Runs a program to its end. One that is still running after `deadlineSeconds` is killed, which
/// the result then shows as its signal.
ProgramResult runProgram(const ProgramRun& run, int deadlineSeconds = 60);

/// What a command of the shell prints.
std::string shellOutput(const std::string& command);

}  // namespace tallowcrest
