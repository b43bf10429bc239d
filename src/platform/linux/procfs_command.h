#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tallowcrest {

/// What a process runs, as valid UTF-8.
struct ProcfsCommand {
    std::string text;
    /// False when the answer is a makeshift because this process had no descriptor left: ask again.
    bool isFinal = true;
};

/// The command of a process whose executable this user may not see. `firstArgument` is the path or
/// name that it was called by, or a title that the program wrote over it, such as
/// "sshd: user@pts/0": of that the program's own name is all that means anything. `name` is the
/// kernel's name of the process, at most 15 bytes.
std::string_view commandOfFirstArgument(std::string_view firstArgument, std::string_view name);

/// The path of the executable, also when that was deleted meanwhile; else what the first argument
/// tells; else the process's name, which is all that one that is ending has. A kernel thread is its
/// name in brackets: they mark what must not be quit, so nothing else is given them.
ProcfsCommand resolveProcfsCommand(int procDirectory, std::int32_t pid, std::string_view name,
                                   bool isKernelThread);

/// Writes "<pid>/<file>" with its closing zero; `path` has room for 32 characters.
void writeProcfsPath(char* path, std::int32_t pid, std::string_view file);

}  // namespace tallowcrest
